// Where the events of one stream come from, each as the text that is sent.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace oam::console {

class EventSource {
  public:
    virtual ~EventSource() = default;
    // Empty when nothing came within the limit; nothing at the end.
    virtual std::optional<std::string> Next(std::chrono::milliseconds limit) = 0;
};

// "id: 7\nevent: alert\ndata: {...}\n\n"; without a line for what is empty.
std::string EventText(const std::string& id, const std::string& event, const std::string& data);

}  // namespace oam::console
