#include "events/event_source.h"

namespace oam::console {

// The data is JSON on one line.
std::string EventText(const std::string& id, const std::string& event, const std::string& data) {
    return (id.empty() ? "" : "id: " + id + '\n') +
           (event.empty() ? "" : "event: " + event + '\n') + "data: " + data + "\n\n";
}

}  // namespace oam::console
