// A process of its own that reads the board shadow.
#pragma once

#include <string>
#include <vector>

#include "child_process.h"
#include "support/objects.h"

namespace oam::test {

class ReaderProcess {
  public:
    ReaderProcess();
    // Starts the process and attaches it.
    static constexpr bool kAttached = true;
    explicit ReaderProcess(bool attached);

    // One question, its words in order; the answer's words.
    std::vector<std::string> Ask(const std::vector<std::string>& words);
    // The result code alone, and with the values that came with it ("a|b" for two).
    unsigned Code(const std::vector<std::string>& words);
    Answer Value(const std::vector<std::string>& words);

    // The boards' names, by position.
    std::vector<std::string> Boards();
    Answer NumberOf(const std::string& board) { return Value({"number-of", board}); }
    Answer DriverIDsOf(const std::string& board) { return Value({"ids", board, "200", "200"}); }
    Answer ByNumber(unsigned number) { return Value({"number", std::to_string(number), "200"}); }
    Answer ALawOf(const std::string& board) { return Value({"alaw", board}); }
    Answer VxPlugin() { return Value({"vx"}); }

    ChildProcess& Process() { return process_; }

  private:
    ChildProcess process_;
};

}  // namespace oam::test
