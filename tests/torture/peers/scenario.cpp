#include "scenario.h"

#include <cstdlib>
#include <memory>
#include <string>

#include "oam/shadow.h"
#include "peer_files.h"

namespace oam::torture {
namespace {

// Small ones: single steps take their time.
constexpr Generation kDeadWriters = 2;
constexpr Generation kLarger = 3;
constexpr Generation kSmaller = 32;  // one board
constexpr Generation kLargeTable = 5;

void attach() {
    if (oamShadowInit() != OAM_SUCCESS) std::abort();
}

// Built before the steps are counted.
std::unique_ptr<ShadowImage> image;

template <Generation generation>
void attachWith() {
    attach();
    image = std::make_unique<ShadowImage>(ImageOf(generation));
}

void publish() { (void)oamShadowGetPtr()->Publish(*image); }

void leave() { (void)oamShadowExit(); }

void readAll() {
    char text[129];
    char id[65];
    unsigned number = 0;
    bool flag = false;
    (void)oamShadowBoardEnum(0, 0, text, sizeof text);
    (void)oamShadowBoardLookupByNumber(0, 1, text, sizeof text);
    (void)oamShadowBoardGetNumber(0, text, &number);
    (void)oamShadowBoardGetDriverIDs(0, text, text, sizeof text, id, sizeof id);
    (void)oamShadowBoardGetIsUsingVxPlugin(0, &flag);
}

template <Generation generation>
void leaveTable() {
    LeaveTable(generation);
}

void leaveJournal() {
    LeaveTable(kFirst);
    LeaveJournal(kDeadWriters);
}

// The lock is spoiled behind the attaching, which would put it right.
template <auto spoil>
void attachAndSpoil() {
    attachWith<kSmaller>();
    spoil();
}

}  // namespace

const std::vector<Scenario>& Scenarios() {
    static const std::vector<Scenario> kScenarios = {
        {"the first to attach", &RemoveSharedFiles, true, [] {}, &attach, {kNothing}},
        {"attaching", &leaveTable<kFirst>, false, [] {}, &attach, {kFirst}},
        {"publishing more",
         &leaveTable<kFirst>,
         false,
         &attachWith<kLarger>,
         &publish,
         {kFirst, kLarger}},
        {"publishing less",
         &leaveTable<kLargeTable>,
         false,
         &attachWith<kSmaller>,
         &publish,
         {kLargeTable, kSmaller}},
        {"publishing after a death",
         &leaveJournal,
         false,
         &attachWith<kSmaller>,
         &publish,
         {kDeadWriters, kSmaller}},
        {"publishing after a death with the lock",
         &leaveJournal,
         false,
         &attachAndSpoil<&LeaveLockHeld>,
         &publish,
         {kDeadWriters, kSmaller}},
        {"publishing with a spoiled lock",
         &leaveTable<kFirst>,
         false,
         &attachAndSpoil<&LeaveLockSpoiled>,
         &publish,
         {kFirst, kSmaller}},
        {"reading", &leaveTable<kFirst>, false, &attach, &readAll, {kFirst}},
        {"reading after a death", &leaveJournal, false, &attach, &readAll, {kDeadWriters}},
        {"leaving", &leaveTable<kFirst>, false, &attach, &leave, {kFirst}},
    };
    return kScenarios;
}

std::string NameOf(const Scenario& scenario) {
    std::string name = scenario.name;
    std::erase(name, ' ');
    return name;
}

std::ostream& operator<<(std::ostream& out, const Scenario& scenario) {
    return out << scenario.name;
}

}  // namespace oam::torture
