// What has been heard of each board: the one place where alerts become counts.
//
// An alert names its source, and a source may be a board, a module or anything a client wrote. The
// outcome of an operation makes it a board for certain; of all others the counts are kept too, and
// whoever reads them asks the service which are boards. At most kMostSources are kept: then the one
// that has been silent longest goes, and one that is no board for certain goes first.
//
// The lock guards the memory alone; nothing here calls the service.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "failure_window.h"

namespace oam::watch {

struct HeardAlert {
    unsigned int code = 0;
    unsigned int severity = 0;
    std::string_view source{};
    std::string_view text{};
    std::chrono::system_clock::time_point time{};
    FailureWindow::Moment moment{};
};

struct Outcomes {
    std::uint64_t succeeded = 0;
    std::uint64_t failed = 0;
};

struct LastOutcome {
    unsigned int code = 0;
    unsigned int severity = 0;
    std::string text{};
    std::chrono::system_clock::time_point time{};
};

struct BoardTally {
    std::string name{};
    Outcomes starts{};
    Outcomes stops{};
    Outcomes tests{};
    // Every other alert, by its severity.
    std::uint64_t informations = 0;
    std::uint64_t warnings = 0;
    std::uint64_t errors = 0;
    std::optional<LastOutcome> last{};
};

class BoardTallies {
  public:
    // Names one tally for its life, also when its board is renamed.
    using Id = std::uint64_t;

    struct Known {
        Id id = 0;
        std::string name{};
    };

    static constexpr std::size_t kMostSources = 4096;

    // True when a failed operation has crossed the limit.
    bool Hear(const HeardAlert& alert, const FailureLimit& limit);

    // Sorted by name.
    std::vector<Known> List() const;
    // These are boards for certain.
    void Confirm(const std::vector<Id>& boards);

    // Nothing when the board is gone.
    std::optional<BoardTally> Get(Id id) const;

    void Reset();

  private:
    struct Entry {
        BoardTally tally{};
        FailureWindow failures{};
        std::uint64_t lastHeard = 0;
        bool isBoard = false;
    };
    using Entries = std::map<Id, Entry>;

    Entry& EntryOf(std::string_view name);
    void MakeRoom();
    void Rename(std::string_view from, std::string_view to);
    void Forget(std::string_view name);

    mutable std::mutex lock_;
    Entries entries_;
    std::map<std::string, Id> ids_;  // by name in lower case
    Id nextId_ = 1;
    std::uint64_t heard_ = 0;
};

}  // namespace oam::watch
