// The test process's side of the recorder modules: their scripts, and every call they received, in
// order. Safe on any thread. One at a time in a process.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "plugins/recorder/control.h"

namespace oam::test {

class Recorder {
  public:
    using Change = std::function<void(ModuleScript&)>;

    Recorder();
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // Where the built modules lie.
    static std::string ModuleDirectory();

    // Changes the script of the module with this file name, now and for its later calls.
    void Script(const std::string& file, const Change& change);

    std::vector<RecordedCall> Calls() const;
    std::vector<RecordedCall> Calls(const std::string& entry) const;
    size_t Count(const std::string& entry) const { return Calls(entry).size(); }
    // Each call as "file Entry(argument, argument)", all of them or of the entries named.
    std::vector<std::string> Lines() const;
    std::vector<std::string> Lines(const std::vector<std::string>& entries) const;
    void Clear();

    // True as soon as an entry was called `count` times; false when 30 seconds are over.
    bool WaitForCall(const std::string& entry, size_t count = 1) const;
    // The same for a condition over the calls, which is asked after every call.
    bool WaitFor(const std::function<bool()>& condition) const;

  private:
    void Record(RecordedCall call);
    ModuleScript Copy(const std::string& file) const;

    RecorderBlock block_;
    mutable std::mutex mutex_;
    mutable std::condition_variable called_;
    std::map<std::string, ModuleScript> scripts_;
    std::vector<RecordedCall> calls_;
};

// Holds threads back until it is opened: a hook waits in it, the test watches and opens.
class Latch {
  public:
    Latch() = default;
    // Waits until everybody has left Wait.
    ~Latch();
    Latch(const Latch&) = delete;
    Latch& operator=(const Latch&) = delete;

    // Waits until Open, or (so that no test hangs) for 60 seconds.
    void Wait();
    void Open();
    // True as soon as `count` threads have arrived at Wait; false when 30 seconds are over.
    bool WaitForArrival(size_t count = 1);

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    size_t arrived_ = 0;
    size_t inside_ = 0;
    bool open_ = false;
};

}  // namespace oam::test
