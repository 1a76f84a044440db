// One row of the tables: one call of one exported function, and what may come of it without memory.
//
// The rule of all rows: a call that answers what it answers with memory leaves what it leaves with
// memory; a call that answers one of its failures leaves what was there before.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "oam/entry.h"
#include "oam/shadow.h"
#include "world.h"

namespace oam::torture {

// What a call left, and what it would have left.
struct Outcome {
    unsigned code;
    const std::string& found;
    const std::string& before;
    const std::string& after;
    const std::string& standing;  // before the row was prepared
};

struct Row {
    using Step = void (*)(World&);

    const char* name;  // the function
    const char* what;  // what is asked of it, when one function has several rows
    unsigned (*call)(World&);
    std::vector<unsigned> failures = {};  // documented for the want of memory; empty: never fails
    Step prepare = nullptr;               // before each call
    Step undo = nullptr;                  // behind each call, whatever came of it
    // After a failure, with memory again: brings what the call was to bring, which is then compared
    // instead of what was there before. False when what it found was not right.
    bool (*mend)(World&) = nullptr;
    // An oddity that is kept on purpose: other states that are right.
    bool (*accepts)(World&, const Outcome&) = nullptr;
    // One of those that a service lives on: tried with lasting shortage in the quick run too.
    bool isVital = false;
    // Every point is tried in the quick run too: each lies elsewhere in what the call puts
    // together.
    bool isIntricate = false;
};

std::ostream& operator<<(std::ostream& out, const Row& row);

// By family. Together they have every exported function.
std::vector<Row> LifecycleRows();
std::vector<Row> ObjectRows();
std::vector<Row> DatabaseRows();
std::vector<Row> ConfigurationRows();
std::vector<Row> BoardRows();
std::vector<Row> QueryRows();
std::vector<Row> AlertRows();
std::vector<Row> ShadowRows();

constexpr unsigned kNoMemory = OAMERR_NOT_ENOUGH_MEMORY;

// The world's open object, for rows that need one; opened and closed without a plug-in in between.
void OpenInWorld(World& world, const char* object, unsigned mode);
// Keeps nothing of what was changed.
void DiscardInWorld(World& world);

// After a failure: what was open is closed, and nothing was kept of it.
bool LeavesItClosed(World& world, const Outcome& outcome);

// Kept: a value that cannot be copied is empty, and that is no failure. `line` is the entry as the
// digest has it.
bool EmptiesValue(const Outcome& outcome, const std::string& line);
// The same inside a greater operation: only in entries whose names have `mark`.
bool EmptiesValues(const Outcome& outcome, std::string_view mark);

}  // namespace oam::torture
