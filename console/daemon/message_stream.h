// Messages that the daemon sends one after another, taken one at a time with a time limit.
//
// No thread of its own: the transport leaves messages in a short queue, and reads on when there is
// room, so a reader that is slow holds up nobody but itself.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "daemon/daemon_connection.h"

namespace oam::console {

class MessageStream {
  public:
    MessageStream(const std::shared_ptr<grpc::Channel>& channel, const std::string& method,
                  const std::string& request, const Identity& identity);
    ~MessageStream();
    MessageStream(const MessageStream&) = delete;
    MessageStream& operator=(const MessageStream&) = delete;

    // Nothing at the time limit and at the end.
    std::optional<std::string> Next(std::chrono::milliseconds limit);
    // How it ended; nothing before all messages are taken.
    std::optional<grpc::Status> End() const;

  private:
    class Reactor;
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace oam::console
