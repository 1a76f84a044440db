#include "plugins/recorder/host.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace oam::test {

namespace {

constexpr std::chrono::seconds kWaitLimit{30};
constexpr std::chrono::seconds kHoldLimit{60};

std::string line(const RecordedCall& call) {
    std::string text = call.file + " " + call.entry + "(";
    for (size_t i = 0; i < call.arguments.size(); ++i) {
        if (i != 0) text += ", ";
        text += call.arguments[i];
    }
    return text + ")";
}

}  // namespace

Recorder::Recorder() {
    block_.record = [this](RecordedCall call) { Record(std::move(call)); };
    block_.script = [this](const std::string& file) { return Copy(file); };
    char address[2 + 2 * sizeof(uintptr_t) + 1];
    std::snprintf(address, sizeof address, "%#zx", reinterpret_cast<uintptr_t>(&block_));
    setenv(kRecorderVariable, address, 1);
}

Recorder::~Recorder() { unsetenv(kRecorderVariable); }

std::string Recorder::ModuleDirectory() { return OAM_TEST_MODULES; }

void Recorder::Script(const std::string& file, const Change& change) {
    std::lock_guard hold(mutex_);
    change(scripts_[file]);
}

ModuleScript Recorder::Copy(const std::string& file) const {
    std::lock_guard hold(mutex_);
    auto found = scripts_.find(file);
    return found == scripts_.end() ? ModuleScript{} : found->second;
}

void Recorder::Record(RecordedCall call) {
    {
        std::lock_guard hold(mutex_);
        calls_.push_back(std::move(call));
    }
    called_.notify_all();
}

std::vector<RecordedCall> Recorder::Calls() const {
    std::lock_guard hold(mutex_);
    return calls_;
}

std::vector<RecordedCall> Recorder::Calls(const std::string& entry) const {
    std::vector<RecordedCall> calls = Calls();
    std::erase_if(calls, [&entry](const RecordedCall& call) { return call.entry != entry; });
    return calls;
}

std::vector<std::string> Recorder::Lines() const {
    std::vector<std::string> lines;
    for (const RecordedCall& call : Calls()) lines.push_back(line(call));
    return lines;
}

std::vector<std::string> Recorder::Lines(const std::vector<std::string>& entries) const {
    std::vector<std::string> lines;
    for (const RecordedCall& call : Calls()) {
        if (std::find(entries.begin(), entries.end(), call.entry) != entries.end()) {
            lines.push_back(line(call));
        }
    }
    return lines;
}

void Recorder::Clear() {
    std::lock_guard hold(mutex_);
    calls_.clear();
}

bool Recorder::WaitForCall(const std::string& entry, size_t count) const {
    return WaitFor([&] { return Count(entry) >= count; });
}

bool Recorder::WaitFor(const std::function<bool()>& condition) const {
    const auto end = std::chrono::steady_clock::now() + kWaitLimit;
    for (;;) {
        size_t seen = 0;
        {
            std::lock_guard hold(mutex_);
            seen = calls_.size();
        }
        if (condition()) return true;
        std::unique_lock hold(mutex_);
        if (!called_.wait_until(hold, end, [&] { return calls_.size() != seen; })) return false;
    }
}

Latch::~Latch() {
    std::unique_lock hold(mutex_);
    changed_.wait(hold, [this] { return inside_ == 0; });
}

void Latch::Wait() {
    std::unique_lock hold(mutex_);
    ++arrived_;
    ++inside_;
    changed_.notify_all();
    changed_.wait_for(hold, kHoldLimit, [this] { return open_; });
    --inside_;
    changed_.notify_all();
}

void Latch::Open() {
    std::lock_guard hold(mutex_);
    open_ = true;
    changed_.notify_all();
}

bool Latch::WaitForArrival(size_t count) {
    std::unique_lock hold(mutex_);
    return changed_.wait_for(hold, kWaitLimit, [&] { return arrived_ >= count; });
}

}  // namespace oam::test
