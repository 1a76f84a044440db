// The processes that live on: one that comes next, and one that has been there all the while.
#pragma once

#include <set>
#include <string>

#include "generation.h"
#include "shared_note.h"
#include "support/forked_child.h"
#include "unit/platform/child_process.h"

namespace oam::torture {

// A process attaches, reads one of the generations that may be there, and publishes another, which
// it then reads. What went wrong, or nothing.
std::string NextPeer(const std::set<Generation>& possible, Generation next);

// Attached from its beginning, it looks when it is asked.
class Witness {
  public:
    Witness();
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;

    // What is wrong when this is not what it sees.
    std::string Expects(Generation generation);

  private:
    int Serve();

    SharedNote& note_ = SharedNote::Make();  // the question, and its answer
    Baton question_;
    Baton answer_;
    test::ForkedChild process_;
};

}  // namespace oam::torture
