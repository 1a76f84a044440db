// A program run by the test, talked to by lines and ended by its process number.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace oam::test {

class ChildProcess {
  public:
    ChildProcess(const std::string& program, const std::vector<std::string>& arguments);
    // Kills the program when it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void Say(const std::string& line);
    // The program's next line; fails the test and is empty when none comes.
    std::string Hear();
    // Ends it without a chance to clean up.
    void Kill();
    // Closes its input and waits; its exit code, or -1 when a signal ended it.
    int Finish();

  private:
    int Await();

    pid_t process_ = -1;
    int input_ = -1;
    int output_ = -1;
    std::string heard_;
};

}  // namespace oam::test
