// How many boards there are, for a thread that must not wait for the service: asked on a thread of
// the lanes, waited for a moment, and remembered.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>

#include "work/lanes.h"

namespace oam::server {

class BoardCount {
  public:
    explicit BoardCount(Lanes& lanes);

    // As it is, or was when the service answered last; nothing when it never did.
    std::optional<std::size_t> Get();

  private:
    struct Known;

    Lanes& lanes_;
    std::shared_ptr<Known> known_;  // shared with the task, which may take its time
};

}  // namespace oam::server
