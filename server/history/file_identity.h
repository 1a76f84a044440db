// Whether a file is the one that was looked at before, told without reading it.
//
// A time stamp tells of a change only when the clock behind it has ticked since: two changes within
// one tick leave the same stamp. So an identity is only good once its stamps are old enough.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

namespace oam::server {

class FileIdentity {
  public:
    // A file as no file is.
    FileIdentity() = default;
    // Nothing when there is none; a Failure when that cannot be told. A link is itself and what it
    // leads to.
    static std::optional<FileIdentity> Of(const std::string& path);

    bool operator==(const FileIdentity&) const = default;

    // Whether a change after `now`, a time before the look, would show.
    bool IsSettled(const timespec& now) const;

    // Replaced by writing into it rather than by another file, so that its directory does not
    // change.
    bool IsWrittenInPlace() const { return !isRegular_; }

    // For the book: what stays the same over a restart of the machine.
    std::string Text() const;

  private:
    struct Facts {
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        std::int64_t size = -1;
        // In nanoseconds since 1970.
        std::int64_t modified = 0;
        std::int64_t changed = 0;

        bool operator==(const Facts&) const = default;
    };
    static Facts FactsOf(const struct stat& status);

    Facts own_;
    Facts target_;  // of a link
    bool isRegular_ = false;
};

timespec Now();

}  // namespace oam::server
