// Operations: what a board can be asked to do, one after another.
#include <string>

#include "entry_call.h"
#include "finding.h"
#include "judged_entries.h"
#include "opened_object.h"
#include "outcomes.h"
#include "shown.h"
#include "stages.h"

namespace oam::check {
namespace {

constexpr const char* kGone = "No such board";

void tellFailure(Entry entry, const std::string& board, unsigned int result) {
    if (result != OAM_SUCCESS)
        Tell(Rule::Operates, entry, Quoted(board) + ": it answered " + judged::NamedCode(result));
}

// Starts and stops are carried out in this thread, so that the entry's result is known.
unsigned int start(const std::string& board) {
    const auto failed = Service().StartBoard(board.c_str(), OAM_SYNCHRONIZED);
    return failed ? failed : CallHistory::LastResult(Entry::StartBoard);
}

unsigned int stop(const std::string& board) {
    const auto failed = Service().StopBoard(board.c_str(), OAM_SYNCHRONIZED);
    return failed ? failed : CallHistory::LastResult(Entry::StopBoard);
}

// The service never does this in the calling thread.
void test(const Bench& bench, const std::string& board, unsigned int value) {
    const int before = Outcomes::Count();
    if (!Service().TestBoard(board.c_str(), value))
        (void)Outcomes::Await(before + 1, bench.Patience());
}

void operateBoard(Bench& bench, const std::string& board) {
    if (bench.Next()) tellFailure(Entry::StartBoard, board, start(board));
    for (const unsigned int value : {0u, 1u, 0xFFFFFFFFu})
        if (bench.Next()) test(bench, board, value);
    for (const unsigned int selector : {0u, 1u, 2u, 0xFFFFFFFFu}) {
        int status = 0;
        if (bench.Next()) (void)Service().BoardGetStatus(board.c_str(), selector, &status);
    }
    if (bench.Next()) (void)Service().SendBuffer(board.c_str(), "check", 5);
    // A second start of a board that runs, and a second stop of one that does not.
    if (bench.Next()) (void)start(board);
    if (bench.Next()) tellFailure(Entry::StopBoard, board, stop(board));
    if (bench.Next()) (void)stop(board);
}

// The board can go while a request for it is on its way.
void operateNoBoard(Bench& bench) {
    if (bench.Next()) (void)judged::StartBoard(kGone);
    if (bench.Next()) (void)judged::TestBoard(kGone, 0);
    if (bench.Next()) (void)judged::StopBoard(kGone);
    if (bench.Next()) (void)judged::SendBuffer(kGone, "check", 5);
}

void renameBoard(const std::string& board) {
    const unsigned int before = start(board);
    const std::string renamed = "Renamed " + board;
    OpenedObject object(board, OAM_OPEN_WRITE);
    if (object.Failure() || object.Set("Name", renamed) || object.Close()) return;
    const unsigned int after = start(renamed);
    if ((before == OAM_SUCCESS) == (after == OAM_SUCCESS)) return;
    Tell(Rule::Renamed, Entry::StartBoard,
         Quoted(board) + ": " + judged::NamedCode(before) +
             ", then renamed: " + judged::NamedCode(after));
}

}  // namespace

void CheckOperations(Bench& bench) {
    if (!bench.Start()) return;
    Outcomes::Listen();
    (void)Service().DetectBoards();
    (void)Service().AddDetectedBoard(nullptr);
    (void)bench.CreateBoards();
    auto boards = bench.Objects();
    boards.erase(boards.begin());  // the module's own object
    for (const auto& board : boards) operateBoard(bench, board);
    operateNoBoard(bench);
    for (const auto& board : boards)
        if (bench.Next()) renameBoard(board);
    bench.Stop();
}

}  // namespace oam::check
