// Any verb that answers with a stream, message for message as events without a name; the last
// event, "end", tells how it ended.
#pragma once

#include <memory>

#include "daemon/message_stream.h"
#include "events/event_source.h"
#include "mirror/routes.h"

namespace oam::console {

class MessageEvents : public EventSource {
  public:
    MessageEvents(const Route& route, std::unique_ptr<MessageStream> stream)
        : route_(route), stream_(std::move(stream)) {}

    std::optional<std::string> Next(std::chrono::milliseconds limit) override;

  private:
    const Route& route_;
    const std::unique_ptr<MessageStream> stream_;
    bool isOver_ = false;
};

}  // namespace oam::console
