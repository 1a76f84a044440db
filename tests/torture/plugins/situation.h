// A way in which an entry of a module is called: what the child does to bring it about, what the
// thread then holds, and what becomes of the entry's code.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "world.h"

namespace oam::torture {

// What the service is in the middle of.
enum class Phase { kStarting, kRunning, kStopping, kImporting };

// What becomes of the code that the entry answers.
enum class Fate {
    kAnswered,        // it is the result
    kNotFoundIsGood,  // the same, but OAMERR_NOT_FOUND counts as success
    kIgnored,         // the result is 0
    kTold,            // the outcome's alert tells whether it was 0
    kNoCode,          // the entry answers a text
};

struct Situation {
    const char* name;
    const char* entry;
    std::vector<std::string> modules;  // the hostile ones
    unsigned (*happen)(World&);        // makes the service call the entry, in the end
    Fate fate = Fate::kAnswered;
    Phase phase = Phase::kRunning;
    bool isManagerHeld = false;         // by the thread in the entry
    bool isHandleLent = false;          // the entry is given one
    void (*prepare)(World&) = nullptr;  // in a running service, before anybody is hostile
};

std::ostream& operator<<(std::ostream& out, const Situation& situation);

std::vector<Situation> PluginSituations();
std::vector<Situation> OperationSituations();  // among the plug-in's
std::vector<Situation> ComponentSituations();
std::vector<Situation> AllSituations();

// Its place among all: where a share of its cases begins.
std::size_t IndexOf(const Situation& wanted);

// What `happen` answers when the entry has answered this code.
unsigned ExpectedResult(const Situation& situation, unsigned code);

// Result of what told no outcome, because the service was stopped meanwhile.
constexpr unsigned kNoOutcome = 0xFFFF0001;

// Shared by the tables.
unsigned StartService(World& world);
unsigned StopService(World& world);
unsigned ImportAll(World& world);
unsigned RaiseAlert(World& world);
unsigned RenameBoard(World& world);
unsigned AskText(World& world);
void SwitchTraceOn(World& world);
// Opens for a client that is not the service's own, and keeps the handle.
void OpenFor(World& world, const char* object, unsigned mode);

}  // namespace oam::torture
