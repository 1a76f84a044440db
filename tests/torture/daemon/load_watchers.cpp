#include "load_watchers.h"

#include <algorithm>
#include <chrono>
#include <mutex>

#include "daemon_test.h"

namespace oam::torture {

struct LoadWatchers::Watcher {
    Watcher(const test::Installation& home, std::uint64_t after) : client(home), last(after) {
        v1::WatchAlertsRequest request;
        request.set_after(after);
        stream = client.alerts->WatchAlerts(&context, request);
        thread = std::thread([this] { Work(); });
    }

    void Work() {
        for (v1::WatchAlertsResponse news; stream->Read(&news);) {
            if (news.has_caught_up()) continue;
            const std::uint64_t first =
                news.has_gap() ? news.gap().first() : news.alert().sequence();
            if (first != last + 1)
                fault = "after " + std::to_string(last) + " came " + std::to_string(first);
            const std::uint64_t next = news.has_gap() ? news.gap().last() : first;
            if (news.has_gap())
                inGaps += next - first + 1;
            else if (!news.alert().operation().empty())
                operations.insert(news.alert().operation());
            if (news.has_alert()) ++alerts;
            last = next;
        }
    }

    test::Client client;
    grpc::ClientContext context;
    std::unique_ptr<grpc::ClientReader<v1::WatchAlertsResponse>> stream;
    std::atomic<std::uint64_t> last;
    // The thread's own until it has ended.
    std::uint64_t alerts = 0;
    std::uint64_t inGaps = 0;
    std::string fault;
    std::set<std::string> operations;
    std::thread thread;
};

LoadWatchers::LoadWatchers(const test::Installation& home, int count, std::uint64_t after) {
    for (int i = 0; i < count; ++i) watchers_.push_back(std::make_unique<Watcher>(home, after));
}

LoadWatchers::~LoadWatchers() {
    for (const auto& watcher : watchers_) {
        watcher->context.TryCancel();
        if (watcher->thread.joinable()) watcher->thread.join();
    }
}

void LoadWatchers::AwaitAll(std::uint64_t number) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    for (const auto& watcher : watchers_) {
        while (watcher->last < number && std::chrono::steady_clock::now() < limit)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        watcher->context.TryCancel();
        watcher->thread.join();
        if (watcher->last < number)
            watcher->fault =
                "stopped at " + std::to_string(watcher->last) + " of " + std::to_string(number);
    }
}

std::uint64_t LoadWatchers::Alerts() const {
    std::uint64_t sum = 0;
    for (const auto& watcher : watchers_) sum += watcher->alerts;
    return sum;
}

std::uint64_t LoadWatchers::InGaps() const {
    std::uint64_t sum = 0;
    for (const auto& watcher : watchers_) sum += watcher->inGaps;
    return sum;
}

std::vector<std::string> LoadWatchers::Faults() const {
    std::vector<std::string> faults;
    for (const auto& watcher : watchers_)
        if (!watcher->fault.empty()) faults.push_back(watcher->fault);
    return faults;
}

std::size_t LoadWatchers::Missed(const std::set<std::string>& operations) const {
    std::size_t missed = 0;
    for (const auto& watcher : watchers_)
        if (watcher->inGaps == 0)
            missed += static_cast<std::size_t>(std::count_if(
                operations.begin(), operations.end(),
                [&](const std::string& id) { return watcher->operations.count(id) == 0; }));
    return missed;
}

}  // namespace oam::torture
