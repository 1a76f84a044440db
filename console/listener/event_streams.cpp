#include "listener/event_streams.h"

#include <chrono>

#include "listener/replies.h"

namespace oam::console {
namespace {

constexpr auto kLook = std::chrono::milliseconds(500);
constexpr auto kSilence = std::chrono::seconds(5);
constexpr const char* kSignOfLife = ":\n\n";

struct Stream {
    std::unique_ptr<EventSource> source;
    std::shared_ptr<void> place;  // among the streams
    std::chrono::steady_clock::time_point said = std::chrono::steady_clock::now();
};

bool send(httplib::DataSink& sink, const std::string& text) {
    return sink.write(text.data(), text.size());
}

}  // namespace

void EventStreams::Serve(httplib::Response& response, std::unique_ptr<EventSource> source) {
    auto place = counts_->BecomeStream();
    if (!place) {
        response.set_header("Retry-After", "5");
        return Refuse(response, 503, "busy", "too many event streams at a time",
                      "--streams sets how many");
    }
    response.status = 200;
    response.set_header("Cache-Control", "no-store");
    // A header alone would wait for the first event.
    const auto stream = std::make_shared<Stream>(Stream{std::move(source), std::move(place), {}});
    response.set_chunked_content_provider("text/event-stream",
                                          [this, stream](std::size_t, httplib::DataSink& sink) {
                                              const auto event = stream->source->Next(kLook);
                                              if (!event || isStopping_) {
                                                  if (event) (void)send(sink, *event);
                                                  sink.done();
                                                  return true;
                                              }
                                              const auto now = std::chrono::steady_clock::now();
                                              if (!event->empty()) {
                                                  stream->said = now;
                                                  return send(sink, *event);
                                              }
                                              if (now - stream->said < kSilence)
                                                  return sink.is_writable();
                                              stream->said = now;
                                              return send(sink, kSignOfLife);
                                          });
}

}  // namespace oam::console
