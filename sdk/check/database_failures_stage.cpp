// Failing database calls: each call that an entry makes fails once, the first in one round, the
// second in the next, until a round has no call left to fail.
//
// A module may do without much of what it asks for. But it must live on, close what it opened, and
// not answer success for something that it could not store.
#include <algorithm>
#include <array>
#include <cstring>

#include "entry_call.h"
#include "failing_call.h"
#include "finding.h"
#include "judged_entries.h"
#include "opened_object.h"
#include "shown.h"
#include "stages.h"

namespace oam::check {
namespace {

constexpr int kMostRounds = 2000;

// Every one of the first calls, then ever fewer of the rest.
int nextRound(int round) { return round + 1 + round / 16; }

bool isWriting(const char* function) {
    constexpr const char* kWriting[] = {"_oamDbOpenObject", "_oamDbSetKeyword",
                                        "_oamDbSetQualifier", "_oamDbCloseObject"};
    return std::any_of(std::begin(kWriting), std::end(kWriting),
                       [&](const char* name) { return std::strcmp(name, function) == 0; });
}

// `work` makes the service call the entry once.
template <class Work>
void failEach(Bench& bench, Entry entry, bool mustTell, const Work& work) {
    for (int round = 1; round < kMostRounds; round = nextRound(round)) {
        const FailingCall failing(entry, round);
        work();
        bench.Moves();
        if (failing.Failed() == nullptr) return;
        if (!mustTell || !isWriting(failing.Failed())) continue;
        if (CallHistory::LastResult(entry) == OAM_SUCCESS)
            Tell(Rule::DatabaseFailure, entry,
                 std::string("its ") + failing.Failed() + " failed, and it answered success");
    }
}

void failCreations(Bench& bench) {
    for (const auto& product : bench.Products()) {
        if (!bench.Next()) continue;
        failEach(bench, Entry::CreateBoard, true, [&] {
            std::array<char, 128> name;
            if (!Service().CreateBoard(product.c_str(), name.data(), name.size()))
                (void)Service().DeleteBoard(name.data());
        });
    }
}

void failAccess(Bench& bench, const std::string& name) {
    for (const Entry entry : {Entry::OpenObject, Entry::CloseObject}) {
        for (const unsigned int mode : {OAM_OPEN_READ, OAM_OPEN_WRITE}) {
            if (!bench.Next()) continue;
            failEach(bench, entry, false, [&] { const OpenedObject object(name, mode); });
        }
    }
    for (const char* keyword : {"Name", "Number", "Check.New"}) {
        const OpenedObject object(name, OAM_OPEN_WRITE);
        if (object.Failure()) return;
        const std::string value = object.Get(keyword).value_or("0");
        if (bench.Next())
            failEach(bench, Entry::SetKeyword, true, [&] { (void)object.Set(keyword, value); });
        if (bench.Next())
            failEach(bench, Entry::GetKeyword, false, [&] { (void)object.Get(keyword); });
    }
}

// The service itself refuses such a change before the module sees it; but the module has to look at
// what its database call answers.
void setWithoutWriting(const std::string& name) {
    const OpenedObject object(name, OAM_OPEN_READ);
    if (object.Failure()) return;
    for (const auto& keyword : object.Keywords()) {
        const std::string value = object.Get(keyword).value_or("0");
        if (judged::SetKeyword(object.Handle(), keyword.c_str(), value.c_str()) == OAM_SUCCESS)
            Tell(Rule::DatabaseFailure, Entry::SetKeyword,
                 Quoted(keyword) + " through a read-only handle: it answered success");
    }
}

void failOperations(Bench& bench, const std::string& board) {
    const auto start = [&] { (void)Service().StartBoard(board.c_str(), OAM_SYNCHRONIZED); };
    if (bench.Next()) failEach(bench, Entry::StartBoard, false, start);
    if (bench.Next())
        failEach(bench, Entry::DetectBoards, false, [] { (void)Service().DetectBoards(); });
}

}  // namespace

void CheckDatabaseFailures(Bench& bench) {
    if (!bench.Start()) return;
    failCreations(bench);
    const auto boards = bench.CreateBoards();
    for (const auto& name : bench.Objects()) {
        failAccess(bench, name);
        if (bench.Next()) setWithoutWriting(name);
    }
    for (const auto& board : boards) failOperations(bench, board);
    bench.Stop();
    if (bench.Next())
        failEach(bench, Entry::Init, false, [] {
            (void)Service().Init();
            (void)Service().Exit();
        });
}

}  // namespace oam::check
