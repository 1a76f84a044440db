// Event streams as HTTP answers: what a source tells is sent as it comes, with a sign of life when
// nothing does, so that a client that went away is noticed and gives its thread back.
#pragma once

#include <httplib.h>

#include <atomic>
#include <memory>

#include "events/event_source.h"
#include "listener/workers.h"

namespace oam::console {

class EventStreams {
  public:
    explicit EventStreams(std::shared_ptr<Workers::Counts> counts) : counts_(std::move(counts)) {}

    // The answer becomes a stream of the source; refused when there are too many.
    void Serve(httplib::Response& response, std::unique_ptr<EventSource> source);
    // All streams end soon.
    void Stop() { isStopping_ = true; }

  private:
    const std::shared_ptr<Workers::Counts> counts_;
    std::atomic<bool> isStopping_{false};
};

}  // namespace oam::console
