// What a server has denied to one link. Its word comes on a thread of the engine's, which may be
// late for the link: so it goes by a number, and what nobody listens to any more is dropped.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace oam::fleet {

class Denials {
  public:
    Denials();
    ~Denials();
    Denials(const Denials&) = delete;
    Denials& operator=(const Denials&) = delete;

    std::uintptr_t Number() const { return number_; }
    // All since the last question. When a server denies much at once, some are left out.
    std::vector<std::string> Take();

    // Any thread, any number.
    static void Tell(std::uintptr_t number, const char* text);

  private:
    const std::uintptr_t number_;
};

}  // namespace oam::fleet
