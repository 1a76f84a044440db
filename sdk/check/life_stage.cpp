// The life cycle: started, stopped and started again, and called when it may be least expected.
#include "entry_call.h"
#include "finding.h"
#include "judged_entries.h"
#include "shown.h"
#include "stages.h"

namespace oam::check {
namespace {

void checkStartAgain(Bench& bench) {
    if (!bench.Start()) return;
    bench.Stop();
    const oam_result failed = Service().Init();
    if (!failed) return;
    const auto refused = CallHistory::LastResult(Entry::Init);
    Tell(Rule::InitAgain, Entry::Init,
         refused ? "the second time it answered " + CodeText(refused)
                 : "the service did not start again: " + CodeText(failed) + "; " +
                       CallHistory::LastFailure());
}

// What a worker may do that was about to call the module when the service stopped.
void callLate(Bench& bench) {
    constexpr const char* kBoard = "gone";
    int status = 0;
    if (judged::Has(Entry::GetText)) (void)judged::GetText(OAMERR_NOT_FOUND);
    if (!bench.IsPlugin()) return;
    (void)judged::StartBoard(kBoard);
    (void)judged::TestBoard(kBoard, 0);
    (void)judged::StopBoard(kBoard);
    (void)judged::SendBuffer(kBoard, "", 0);
    if (judged::Has(Entry::GetBoardStatus)) (void)judged::GetBoardStatus(kBoard, 0, &status);
}

}  // namespace

void CheckLife(Bench& bench) {
    if (bench.Next() && bench.Start()) bench.Stop();
    if (bench.Next()) checkStartAgain(bench);
    if (bench.Next() && bench.Start()) {
        bench.Stop();
        // Exit is also called when another module's start has failed.
        (void)judged::Exit();
    }
    if (bench.Next() && bench.Start()) {
        bench.Stop();
        callLate(bench);
    }
}

}  // namespace oam::check
