// What counts for ever: the daemon's starts, and its alerts. A small file of its own,
// "oam/oamd.numbers", so that numbers go on when the book is spoiled, of a newer version, deleted,
// or cannot grow.
//
// The file is one line of 76 bytes, rewritten in place; that needs no room on a full disk, and no
// disk tears so little:
//
//   oamd 1 start 00000000000000000007 alert 00000000000000200000 check 89abcdef<newline>
//
// Numbers of alerts are reserved ahead in blocks, because nobody waits for a disk to give one. An
// alert is shown when its number has been reserved, so no restart, not even after a kill, begins at
// a number that anybody has seen.
//
// When the file is lost or spoiled, or cannot be written, all numbers go on from the clock's
// microseconds: that is more than were ever counted, and more than at the last time.
#pragma once

#include <cstdint>
#include <string>

namespace oam::server {

class Numbers {
  public:
    // Far more than are raised while one write to the disk lasts, and little to lose in a kill.
    static constexpr std::uint64_t kBlock = 100000;

    // Begins a start, and reserves the first block; both are on the disk then. `isFirstStart`:
    // there is nothing of earlier starts, so that a file that is not there is not a lost one.
    Numbers(const std::string& path, bool isFirstStart, std::uint64_t block = kBlock);

    // Why numbers go on from the clock; empty: they do not. For the log.
    const std::string& Trouble() const { return trouble_; }

    // This start's number, never given before.
    std::uint64_t Start() const { return start_; }
    // The alert number behind which all were free at this start: after an orderly end the newest
    // alert's.
    std::uint64_t LastAlert() const { return lastAlert_; }

    // Up to which number alerts may be shown; on one thread at a time, as Reserve.
    std::uint64_t Reserved() const { return reserved_; }
    std::uint64_t Block() const { return block_; }
    // On the disk when it returns. Less than before, at an orderly end. After a StoreError
    // Reserved() is as it was.
    void Reserve(std::uint64_t lastAlert);

  private:
    const std::string path_;
    const std::uint64_t block_;
    std::string trouble_;
    std::uint64_t start_ = 0;
    std::uint64_t lastAlert_ = 0;
    std::uint64_t reserved_ = 0;
};

}  // namespace oam::server
