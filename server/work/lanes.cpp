#include "work/lanes.h"

#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <list>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "failure.h"
#include "object_kind.h"

namespace oam::server {
namespace {

using Clock = std::chrono::steady_clock;
using Lock = std::unique_lock<std::mutex>;

struct Job {
    Lanes::Running facts;
    std::function<void()> task;
    std::thread thread;  // from its begin on
};
using Jobs = std::list<Job>;

void joinAll(Jobs& jobs) {
    for (Job& job : jobs)
        if (job.thread.joinable()) job.thread.join();
}

std::string hangText(const Lanes::Running& run) {
    const auto age = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - run.since);
    return run.what + (run.lane.empty() ? "" : " of " + Quoted(run.lane)) +
           " has not returned for " + std::to_string(age.count()) + " s";
}

// A limit of "for ever" must not overflow.
Clock::time_point deadlineAfter(std::chrono::milliseconds limit) {
    return Clock::now() + std::min<std::chrono::milliseconds>(limit, std::chrono::hours(24 * 365));
}

}  // namespace

// All members are called, and all data is touched, under the mutex, but for Work. Jobs move from
// one list to the next and no memory is taken on their way. What could run does not wait, unless
// there was no thread for it; then something else runs and takes it up at its end.
struct Lanes::State {
    explicit State(const Limits& given) : limits(given) {
        limits.threads = std::max<std::size_t>(limits.threads, 1);
    }

    Jobs::const_iterator HolderOf(const std::string& lane) const;
    bool CanRun(const std::string& lane) const;
    bool IsOverfull(const std::string& lane) const;
    Refusal WhyItWaits(const std::string& lane) const;

    Jobs::iterator NextReady();
    // Begins what can run. The reason when there was no thread for it, else the empty text.
    std::string BeginReady();
    // Runs on a job's thread.
    void Work(Jobs::iterator job);
    // The job that this thread goes on with, or the end of `waiting`. `left` gets what is over.
    Jobs::iterator End(Jobs::iterator job, Jobs* left);

    Limits limits;
    mutable std::mutex mutex;
    std::condition_variable changed;
    Jobs waiting;  // of all lanes, in the order of their posting
    Jobs running;  // oldest first
    Jobs ended;    // their threads are to be joined
    bool isHeld = false;
    bool isEnding = false;
};

Jobs::const_iterator Lanes::State::HolderOf(const std::string& lane) const {
    if (lane.empty()) return running.end();
    return std::find_if(running.begin(), running.end(),
                        [&](const Job& job) { return SameName(job.facts.lane, lane); });
}

bool Lanes::State::CanRun(const std::string& lane) const {
    return !isHeld && running.size() < limits.threads && HolderOf(lane) == running.end();
}

bool Lanes::State::IsOverfull(const std::string& lane) const {
    if (waiting.size() > limits.waiting) return true;
    const auto inLane = std::count_if(waiting.begin(), waiting.end(), [&](const Job& job) {
        return SameName(job.facts.lane, lane);
    });
    return !lane.empty() && std::cmp_greater(inLane, limits.waitingPerLane);
}

Lanes::Refusal Lanes::State::WhyItWaits(const std::string& lane) const {
    const auto holder = HolderOf(lane);
    if (holder != running.end()) return {hangText(holder->facts)};
    if (running.empty()) return {"a call that runs alone has not returned"};
    const std::string oldest = hangText(running.front().facts);
    if (isHeld) return {"a call waits to run alone: " + oldest};
    return {"all " + std::to_string(limits.threads) + " threads are taken: " + oldest};
}

Jobs::iterator Lanes::State::NextReady() {
    return std::find_if(waiting.begin(), waiting.end(),
                        [this](const Job& job) { return CanRun(job.facts.lane); });
}

std::string Lanes::State::BeginReady() {
    for (auto job = NextReady(); job != waiting.end(); job = NextReady()) {
        job->facts.since = Clock::now();
        try {
            job->thread = std::thread([this, job] { Work(job); });
        } catch (const std::exception& failure) {  // std::system_error, std::bad_alloc
            return failure.what();
        }
        running.splice(running.end(), waiting, job);
    }
    return {};
}

void Lanes::State::Work(Jobs::iterator job) {
    for (bool goesOn = true; goesOn;) {
        {
            const Lock lock(mutex);
            job->facts.thread = gettid();
        }
        job->task();
        job->task = nullptr;  // what it holds ends before its lane is free
        Jobs left;
        {
            const Lock lock(mutex);
            job = End(job, &left);
            goesOn = job != waiting.end();
        }
        joinAll(left);
    }
}

Jobs::iterator Lanes::State::End(Jobs::iterator job, Jobs* left) {
    left->splice(left->end(), ended);
    ended.splice(ended.end(), running, job);
    (void)BeginReady();
    const auto next = NextReady();
    if (next == waiting.end()) {
        changed.notify_all();
        return next;
    }
    // There is no thread but this one.
    next->facts.since = Clock::now();
    next->thread = std::move(job->thread);
    running.splice(running.end(), waiting, next);
    left->splice(left->end(), ended);
    return next;
}

Lanes::Lanes(const Limits& limits) : state_(std::make_unique<State>(limits)) {}

Lanes::~Lanes() {
    Jobs dropped;
    {
        const Lock lock(state_->mutex);
        state_->isEnding = true;
        dropped.splice(dropped.end(), state_->waiting);
    }
    dropped.clear();
    Jobs left;
    {
        Lock lock(state_->mutex);
        state_->changed.wait(lock, [this] { return state_->running.empty(); });
        left.splice(left.end(), state_->ended);
    }
    joinAll(left);
}

std::optional<Lanes::Refusal> Lanes::Post(const std::string& what, const std::string& lane,
                                          std::function<void()> task) {
    // Declared before the lock: what is refused is destroyed without it.
    Jobs posted;
    posted.push_back({{what, lane, {}, 0}, std::move(task), {}});
    const auto job = posted.begin();
    const Lock lock(state_->mutex);
    if (state_->isEnding) return Refusal{"the daemon ends"};
    state_->waiting.splice(state_->waiting.end(), posted);
    const std::string failure = state_->BeginReady();
    if (job->thread.joinable()) return std::nullopt;
    std::optional<Refusal> refusal;
    if (state_->CanRun(lane))
        refusal = Refusal{"no thread can be made: " + failure};
    else if (state_->IsOverfull(lane))
        refusal = state_->WhyItWaits(lane);
    if (refusal) posted.splice(posted.end(), state_->waiting, job);
    return refusal;
}

std::vector<Lanes::Running> Lanes::Runs() const {
    const Lock lock(state_->mutex);
    std::vector<Running> runs;
    for (const Job& job : state_->running) runs.push_back(job.facts);
    return runs;
}

std::size_t Lanes::Waiting() const {
    const Lock lock(state_->mutex);
    return state_->waiting.size();
}

std::size_t Lanes::Threads() const { return state_->limits.threads; }

bool Lanes::Alone(std::chrono::milliseconds limit, const std::function<void()>& alone) {
    // Lets the tasks go on, however this ends.
    struct Hold {
        State& state;
        ~Hold() {
            Jobs dropped;
            const Lock lock(state.mutex);
            state.isHeld = false;
            (void)state.BeginReady();
            if (state.running.empty()) dropped.splice(dropped.end(), state.waiting);
            state.changed.notify_all();
        }
    };
    State& state = *state_;
    const auto deadline = deadlineAfter(limit);
    Lock lock(state.mutex);
    if (!state.changed.wait_until(lock, deadline, [&] { return !state.isHeld; })) return false;
    state.isHeld = true;
    lock.unlock();
    const Hold hold{state};
    lock.lock();
    const bool isFree =
        state.changed.wait_until(lock, deadline, [&] { return state.running.empty(); });
    Jobs left;
    left.splice(left.end(), state.ended);
    lock.unlock();
    joinAll(left);
    if (isFree) alone();
    return isFree;
}

}  // namespace oam::server
