// The life of the service in this daemon, with all that goes with it: sessions end before it stops,
// the configuration is looked over before it starts.
#pragma once

namespace oam::server {

class ServiceControl {
  public:
    virtual ~ServiceControl() = default;

    // A start that fails is a Failure.
    virtual void Start() = 0;
    virtual void Stop() = 0;
};

}  // namespace oam::server
