#include "events/message_events.h"

#include "mirror/mirror.h"

namespace oam::console {

std::optional<std::string> MessageEvents::Next(std::chrono::milliseconds limit) {
    if (isOver_) return std::nullopt;
    if (const auto bytes = stream_->Next(limit))
        return EventText("", "", AnswerJson(route_, *bytes).dump());
    const auto end = stream_->End();
    if (!end) return "";
    isOver_ = true;
    return EventText("", "end", end->ok() ? "{}" : RefusalJson(*end).dump());
}

}  // namespace oam::console
