#include "services/operation_waits.h"

#include <vector>

namespace oam::server {

OperationWaits::OperationWaits(OperationBook& book) : book_(book) {
    thread_ = std::thread([this] { Work(); });
}

OperationWaits::~OperationWaits() {
    std::map<std::uint64_t, Wait> left;
    {
        const std::lock_guard hold(mutex_);
        isEnding_ = true;
        left.swap(waits_);
    }
    news_.notify_all();
    thread_.join();
    for (const auto& [number, wait] : left) (void)book_.Cancel(wait.inBook);
}

std::optional<std::uint64_t> OperationWaits::Add(const std::string& id, const std::string& user,
                                                 std::optional<Clock::time_point> limit,
                                                 OperationBook::Done done) {
    if (!book_.Find(id)) return std::nullopt;
    std::uint64_t number = 0;
    {
        const std::lock_guard hold(mutex_);
        number = ++last_;
        waits_[number] = {id, user, 0, limit};
    }
    // The end may come before Wait returns; then there is nothing left to note.
    const auto inBook =
        book_.Wait(id, [this, number, done = std::move(done)](const OperationRecord& record) {
            {
                const std::lock_guard hold(mutex_);
                waits_.erase(number);
            }
            done(record);
        });
    const std::lock_guard hold(mutex_);
    if (!inBook) {  // forgotten since
        waits_.erase(number);
        return std::nullopt;
    }
    if (const auto wait = waits_.find(number); wait != waits_.end()) wait->second.inBook = *inBook;
    news_.notify_all();
    return number;
}

void OperationWaits::End(std::uint64_t number) {
    std::uint64_t inBook = 0;
    {
        const std::lock_guard hold(mutex_);
        const auto wait = waits_.find(number);
        if (wait == waits_.end()) return;
        inBook = wait->second.inBook;
    }
    (void)book_.Cancel(inBook);
}

unsigned OperationWaits::EndOf(const std::string& id, const std::string& user) {
    std::vector<std::uint64_t> found;
    {
        const std::lock_guard hold(mutex_);
        for (const auto& [number, wait] : waits_)
            if (wait.id == id && wait.user == user) found.push_back(wait.inBook);
    }
    unsigned ended = 0;
    for (const std::uint64_t inBook : found) ended += book_.Cancel(inBook) ? 1 : 0;
    return ended;
}

void OperationWaits::Work() {
    std::unique_lock hold(mutex_);
    while (!isEnding_) {
        const auto now = Clock::now();
        std::optional<Clock::time_point> next;
        std::vector<std::uint64_t> over;
        for (const auto& [number, wait] : waits_) {
            if (!wait.limit || wait.inBook == 0) continue;
            if (*wait.limit <= now)
                over.push_back(wait.inBook);
            else if (!next || *wait.limit < *next)
                next = wait.limit;
        }
        if (!over.empty()) {
            hold.unlock();
            for (const std::uint64_t inBook : over) (void)book_.Cancel(inBook);
            hold.lock();
        } else if (next) {
            news_.wait_until(hold, *next);
        } else {
            news_.wait(hold);
        }
    }
}

}  // namespace oam::server
