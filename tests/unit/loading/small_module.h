// A small module in an installation's "lib" and what it has noted.
#pragma once

#include <string>

#include "support/installation.h"

namespace oam::test {

class SmallModule {
  public:
    // Copies the built module ("small_complete", ...) to "lib/<file>" and loads it, so that its
    // answer can be set before the service calls it.
    SmallModule(const Installation& home, const std::string& file,
                const std::string& built = "small_complete");

    // From now on every entry that answers a code answers this one.
    void Answer(unsigned code) const;
    // The calls so far, a line each: "Init(x.emc)\n".
    std::string Calls() const;
    void* Library() const { return library_; }

  private:
    void* library_;
};

}  // namespace oam::test
