// The outcomes of board operations, as the service's alerts tell them.
#pragma once

#include <chrono>

namespace oam::check {

class Outcomes {
  public:
    // Listens from now on.
    static void Listen();
    // How many operations have come to their end so far.
    static int Count();
    static bool Await(int count, std::chrono::milliseconds limit);
};

}  // namespace oam::check
