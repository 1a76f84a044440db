// A program run by a test, with its output taken up.
//
// The child belongs to the test: a destructor that finds it running kills it by its own id. Every
// wait has a generous limit, and running into it fails the test.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace oam::test {

struct Finished {
    int status = -1;  // the exit status; -1 when a signal ended it
    std::string out;
    std::string err;
};

class ChildProcess {
  public:
    // Starts `command` (the program's path and its arguments) in the directory.
    ChildProcess(const std::vector<std::string>& command, const std::string& directory);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t Pid() const { return pid_; }
    void Signal(int number) const;
    void CloseOutput();

    // Waits until the text has come on standard output or standard error.
    void AwaitOutput(const std::string& text);
    void AwaitError(const std::string& text);
    // The same; the rest of the line behind the text.
    std::string AwaitErrorLine(const std::string& text);
    // The same on standard output; false when it ends without having said so.
    bool Says(const std::string& text);
    // What was said so far.
    const std::string& Output() const { return result_.out; }
    Finished Finish();

  private:
    void Await(const std::string& text, const std::string& where);
    bool ReadSome();

    pid_t pid_ = -1;
    int out_ = -1;
    int err_ = -1;
    Finished result_;
};

}  // namespace oam::test
