// Interruptions: the service stops, imports a configuration or deletes a board while a board starts
// and while it stops.
#include <thread>

#include "entry_call.h"
#include "finding.h"
#include "opened_object.h"
#include "shown.h"
#include "stages.h"

namespace oam::check {
namespace {

// Enough for a worker to come as far as the module.
constexpr std::chrono::seconds kForWorker{5};

constexpr const char* kExportFile = "/exported.xmo";

std::string exportPath(const Bench& bench) {
    const auto& module = bench.Asked().module;
    return module.substr(0, module.rfind('/')) + kExportFile;
}

// A board that is about to start, or (behind a start) about to stop.
bool beginOperation(const std::string& board, Entry entry) {
    const bool isStart = entry == Entry::StartBoard;
    if (!isStart) (void)Service().StartBoard(board.c_str(), OAM_SYNCHRONIZED);
    const int before = CallHistory::Begun(entry);
    const auto failed =
        isStart ? Service().StartBoard(board.c_str(), 0) : Service().StopBoard(board.c_str(), 0);
    return !failed && CallHistory::AwaitBegun(entry, before + 1, kForWorker);
}

// An entry that is under way may have an object open; then the import is refused, rightly.
void import(const Bench& bench) {
    const std::string path = exportPath(bench);
    if (Service().ConfigExport(path.c_str())) return;
    const auto failed = Service().ConfigImport(path.c_str());
    if (failed && failed != OAMERR_ACCESS_DENIED)
        Tell(Rule::InitAgain, Entry::Init,
             "an import of the service's own export failed with " + CodeText(failed));
}

std::string freshBoard(const Bench& bench) {
    (void)Service().DetectBoards();
    (void)Service().AddDetectedBoard(nullptr);
    const auto objects = bench.Objects();
    if (objects.size() > 1) return objects[1];
    const auto created = bench.CreateBoards();
    return created.empty() ? "" : created.front();
}

template <class Interruption>
void interrupt(Bench& bench, Entry entry, const Interruption& interruption) {
    if (!bench.Next() || !bench.Start()) return;
    const std::string board = freshBoard(bench);
    if (!board.empty()) (void)beginOperation(board, entry);
    interruption(board);
    bench.Stop();
    // The worker is still in the module; it has to come back from it.
    (void)CallHistory::AwaitIdle(bench.Patience());
}

}  // namespace

void CheckInterruptions(Bench& bench) {
    for (const Entry entry : {Entry::StartBoard, Entry::StopBoard}) {
        interrupt(bench, entry, [](const std::string&) {});
        interrupt(bench, entry, [](const std::string&) { (void)Service().Restart(); });
        interrupt(bench, entry, [](const std::string& board) {
            (void)Service().DeleteBoard(board.empty() ? nullptr : board.c_str());
        });
        interrupt(bench, entry, [&](const std::string&) { import(bench); });
    }
}

}  // namespace oam::check
