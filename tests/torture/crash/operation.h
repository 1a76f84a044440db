// What is interrupted: each way in which the service changes its files.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "host.h"
#include "oam/entry.h"

namespace oam::torture {

struct Operation {
    const char* name;
    // The rest of the template's files, when there are any.
    std::function<void(Host&)> prepare;
    // On a running service, or (`isStart`) the start itself.
    bool isStart;
    std::function<unsigned(const Host&)> run;
    std::set<unsigned> failures;         // what it may answer when the system fails
    std::vector<std::string> leaves;     // files beside the data files that are right afterwards
    // Kept: a data file that cannot be removed is no failure of a deletion; its object is back at
    // the next start.
    bool mayComeBack = false;
    // Kept: where the directory of the data files cannot be opened the service runs without them.
    // They stay as they are, and the next start has them.
    bool mayRunEmpty = false;
};

const std::vector<Operation>& Operations();
// The name without its blanks, for a test.
std::string NameOf(const Operation& operation);

// What must be found: before the operation, and after it succeeded.
struct States {
    std::string before;
    std::string after;
};

// In a child that is traced, or not: the service, the operation, and what came of it. Told is the
// code and what the living service then holds.
int Perform(const Host& host, const Operation& operation);

struct Outcome {
    unsigned code = ~0U;
    std::string digest;
};
Outcome ToldOutcome(const Host& host);

// The states of an undisturbed run.
States StatesOf(Host& host, const Operation& operation);

}  // namespace oam::torture
