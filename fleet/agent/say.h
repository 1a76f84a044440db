// What the agent has to say, on standard error; under systemd that is the journal. What is said
// again and again is said once, until something else is.
#pragma once

#include <mutex>
#include <string>

namespace oam::fleet {

void Say(const std::string& text);

// One matter that is well or not: each change is told once.
class Matter {
  public:
    // `text` while it is not well.
    void IsBad(const std::string& text);
    void IsWell(const std::string& text);

  private:
    std::mutex mutex_;
    std::string said_;
    bool isBad_ = false;
};

}  // namespace oam::fleet
