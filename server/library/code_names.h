// Names of codes, for threads that must not wait for a plug-in.
//
// The service's own codes are known. Any other one is asked of the plug-ins and components on a
// thread of the lanes, waited for a moment, and remembered; until a plug-in has answered, its code
// has no name.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "work/lanes.h"

namespace oam::server {

class CodeNames {
  public:
    explicit CodeNames(Lanes& lanes) : lanes_(lanes) {}

    // Empty when nobody knows it.
    std::string Of(std::uint32_t code);
    // After plug-ins were loaded anew.
    void Forget();

  private:
    struct Names;

    Lanes& lanes_;
    std::mutex mutex_;
    std::shared_ptr<Names> names_;
};

}  // namespace oam::server
