// A port of the loopback that no other test takes, for as long as the object is there.
//
// A server that is killed and comes back needs its old port, in between which anybody could take
// it. So the port is chosen outside of those that the system gives away, and held at another
// address of the loopback (127.0.0.2), where every rig tries first.
#pragma once

#include <string>

namespace oam::test {

class ReservedPort {
  public:
    ReservedPort();
    ~ReservedPort();
    ReservedPort(const ReservedPort&) = delete;
    ReservedPort& operator=(const ReservedPort&) = delete;

    int Number() const { return number_; }
    // "127.0.0.1:21001"
    std::string Address() const { return "127.0.0.1:" + std::to_string(number_); }
    // "localhost:21001", as certificates have it.
    std::string Name() const { return "localhost:" + std::to_string(number_); }

  private:
    int number_ = 0;
    int held_ = -1;
};

}  // namespace oam::test
