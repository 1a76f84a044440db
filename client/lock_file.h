// One tool at a time: the file "oam/oam.lock" of an installation, locked as a whole by its holder.
//
// The kernel gives the lock back when its holder ends, however it ends; the file itself stays. It
// holds one line for the others to read, the holder's process id and command. The line is written
// after the lock is taken, so a lock without a line is one that lasts a moment: a holder at its
// begin, or somebody who just asked whether there is one.
#pragma once

#include <optional>
#include <string>

#include "installation.h"

namespace oam {

struct LockHolder {
    long pid = 0;  // 0: it has not told
    std::string command;

    // "process 4711 (oam monitor)"
    std::string Text() const;
};

class LockFile {
  public:
    // Throws a Failure that names the holder when somebody else has the lock.
    LockFile(const Installation& place, const std::string& command);
    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    // Who holds the lock now, without taking it for longer than the question.
    static std::optional<LockHolder> Holder(const Installation& place);

  private:
    int descriptor_;
};

}  // namespace oam
