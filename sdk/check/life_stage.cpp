// The life cycle: started, stopped and started again, and called when it may be least expected.
#include "judged_entries.h"
#include "stages.h"

namespace oam::check {
namespace {

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
    for (int life = 0; life < 3; ++life)
        if (bench.Next() && bench.Start()) bench.Stop();
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
