// Concurrency: many boards at once, with clients that read meanwhile.
#include <atomic>
#include <thread>

#include "entry_call.h"
#include "finding.h"
#include "judged_entries.h"
#include "opened_object.h"
#include "outcomes.h"
#include "stages.h"

namespace oam::check {
namespace {

constexpr std::size_t kMostBoards = 8;

// A client that reads for as long as it lives.
class Reader {
  public:
    explicit Reader(std::vector<std::string> boards)
        : boards_(std::move(boards)), thread_([this] { Run(); }) {}
    ~Reader() {
        isEnding_ = true;
        thread_.join();
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

  private:
    void Run() const {
        while (!isEnding_)
            for (const auto& board : boards_) ReadOne(board);
    }

    void ReadOne(const std::string& board) const {
        int status = 0;
        (void)Service().BoardGetStatus(board.c_str(), 0, &status);
        const OpenedObject object(board, OAM_OPEN_READ);
        if (object.Failure()) return;
        for (const char* keyword : {"Name", "Number", "No.Such.Keyword"}) (void)object.Get(keyword);
        Journal().Progress();
    }

    std::vector<std::string> boards_;
    std::atomic<bool> isEnding_{false};
    std::thread thread_;
};

std::vector<std::string> manyBoards(Bench& bench) {
    (void)Service().DetectBoards();
    (void)Service().AddDetectedBoard(nullptr);
    while (bench.Objects().size() <= kMostBoards && !bench.CreateBoards().empty()) {
    }
    auto boards = bench.Objects();
    boards.erase(boards.begin());
    return boards;
}

template <class Request>
void onEveryBoard(const Bench& bench, std::size_t boards, const Request& request) {
    const int before = Outcomes::Count();
    const auto limit = bench.Patience() * static_cast<int>(boards);
    if (!request()) (void)Outcomes::Await(before + static_cast<int>(boards), limit);
}

}  // namespace

void CheckConcurrency(Bench& bench) {
    if (!bench.Start()) return;
    Outcomes::Listen();
    const auto boards = manyBoards(bench);
    if (boards.empty()) return bench.Stop();
    for (const unsigned int flags : {0u, static_cast<unsigned int>(OAM_SYNCHRONIZED)}) {
        const Reader first(boards);
        const Reader second(boards);
        if (bench.Next())
            onEveryBoard(bench, boards.size(),
                         [=] { return Service().StartBoard(nullptr, flags); });
        if (bench.Next())
            onEveryBoard(bench, boards.size(), [] { return Service().TestBoard(nullptr, 0); });
        if (bench.Next()) (void)Service().DetectBoards();
        if (bench.Next())
            onEveryBoard(bench, boards.size(), [=] { return Service().StopBoard(nullptr, flags); });
    }
    bench.Stop();
}

}  // namespace oam::check
