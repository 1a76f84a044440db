// The service as it runs on a host: with the simulated chassis, the watch component, and every
// board of the chassis configured. Made once in a process, stopped when the process ends.
#pragma once

#include "temporary_installation.h"

namespace oam::fuzz {

constexpr unsigned long kClient = 7;

class RunningService {
  public:
    // The one of this process.
    static RunningService& Get();

    const TemporaryInstallation& Home() const { return home_; }

  private:
    RunningService();
    ~RunningService();

    TemporaryInstallation home_;
};

}  // namespace oam::fuzz
