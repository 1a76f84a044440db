// Collects every call of the alert callback.
//
// The constructor installs the callback, the destructor removes it. Alerts come on any thread; the
// log is safe for all of them. One at a time in a process.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "oam/entry.h"

namespace oam::test {

// Generous: a wait that needs it all is a failure.
constexpr std::chrono::seconds kLimit{30};

// The client value of the callback's call for the server itself.
constexpr unsigned long kServer = OAM_INTERNAL_CLIENT;

struct Alert {
    unsigned long client = 0;
    unsigned code = 0;
    unsigned severity = 0;
    std::string source;
    std::string text;
    std::string raw;  // the whole record, `size` bytes
    unsigned size = 0;
    unsigned sourceOffset = 0;
    unsigned textOffset = 0;
    std::thread::id thread;
};

// Code, severity, source and text: what an alert says.
struct Said {
    unsigned code = 0;
    unsigned severity = 0;
    std::string source;
    std::string text;
    bool operator==(const Said&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Said& said);
std::ostream& operator<<(std::ostream& out, const Alert& alert);

class AlertLog {
  public:
    AlertLog();
    ~AlertLog();
    AlertLog(const AlertLog&) = delete;
    AlertLog& operator=(const AlertLog&) = delete;

    // Installs the callback again, after a test has replaced or removed it.
    void Install();
    // What the callback answers; it runs with no lock of the log held, on the alert's thread.
    void AnswerWith(std::function<unsigned(const Alert&)> answer);

    std::vector<Alert> All() const;
    std::vector<Alert> For(unsigned long client) const;
    // What the server itself was told, in order: all of it, or one event code alone.
    std::vector<Said> Heard() const;
    std::vector<Said> Heard(unsigned code) const;
    std::vector<Said> HeardFrom(const std::string& source) const;
    void Clear();

    // True as soon as the predicate holds over all alerts so far; false when the limit is over.
    bool WaitFor(const std::function<bool(const std::vector<Alert>&)>& predicate,
                 std::chrono::milliseconds limit = kLimit) const;
    // Waits until the server has been told `count` times of the event (from the source).
    bool WaitForCode(unsigned code, size_t count = 1, const std::string& source = {}) const;

  private:
    static unsigned Receive(unsigned long client, const oam_msg_tag* message);
    unsigned Add(unsigned long client, const oam_msg_tag* message);

    mutable std::mutex mutex_;
    mutable std::condition_variable arrived_;
    std::vector<Alert> alerts_;
    std::function<unsigned(const Alert&)> answer_;
};

// A finished record as _oamAlertNotify takes it. `size` counts header, source and text.
std::string MakeRecord(unsigned code, unsigned severity, const std::string& source,
                       const std::string& text);
inline const oam_msg_tag* AsMessage(const std::string& record) {
    return reinterpret_cast<const oam_msg_tag*>(record.data());
}

// Raises an alert as a client of the service does.
oam_result Raise(unsigned code, unsigned severity, const std::string& source,
                 const std::string& text);

}  // namespace oam::test
