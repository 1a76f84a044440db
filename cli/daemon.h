// What only a daemon can be asked.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace oam {

struct HostFacts {
    std::string version;
    std::string directory;
    std::uint64_t process = 0;
    bool isRunning = false;
    std::string code;  // why the service does not run; empty: it does, or was stopped
    std::uint64_t newestAlert = 0;
    std::string user;  // who the caller is to it
    std::string role;
};

struct DoctorFinding {
    std::string severity;  // "note", "warning", "error"
    std::string subject;
    std::string text;
    std::string remedy;
};

struct ValueChange {
    std::string keyword;
    std::optional<std::string> before;
    std::optional<std::string> after;
};

struct HistoryLine {
    std::uint64_t generation = 0;
    std::chrono::system_clock::time_point time;
    std::string user;
    std::string action;
    std::string object;
    std::vector<ValueChange> changes;
};

struct ObjectDifferences {
    std::string object;
    std::string kind;  // "changed", "created", "deleted"
    std::vector<ValueChange> changes;
};

class Daemon {
  public:
    virtual ~Daemon() = default;

    enum class Life { kStart, kStop, kRestart };

    virtual HostFacts Host() = 0;
    virtual HostFacts Control(Life life) = 0;
    virtual std::vector<DoctorFinding> Diagnose() = 0;
    // Newest first; an empty `object` means all.
    virtual std::vector<HistoryLine> History(const std::string& object, unsigned limit) = 0;
    // `to` 0: now.
    virtual std::vector<ObjectDifferences> Diff(std::uint64_t from, std::uint64_t to,
                                                const std::string& object) = 0;
    // What is different afterwards; an empty `object` means everything.
    virtual std::vector<ObjectDifferences> RollBack(std::uint64_t generation,
                                                    const std::string& object) = 0;
};

}  // namespace oam
