// A client of an event stream: takes it apart, on a thread of its own.
#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>

namespace oam::test {

struct Event {
    std::string id;
    std::string name;
    nlohmann::json data;
};

class EventReader {
  public:
    EventReader(std::unique_ptr<httplib::Client> client, const std::string& path,
                const httplib::Headers& headers = {})
        : client_(std::move(client)), thread_([this, path, headers] { Read(path, headers); }) {}
    ~EventReader() {
        isLeaving_ = true;
        client_->stop();
        thread_.join();
    }

    // The next event of this name; nothing when the stream ended, or none came for long.
    std::optional<Event> Next(const std::string& name) {
        std::unique_lock hold(mutex_);
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        for (;;) {
            while (!events_.empty()) {
                Event first = std::move(events_.front());
                events_.pop_front();
                if (first.name == name) return first;
            }
            if (isOver_ || news_.wait_until(hold, limit) == std::cv_status::timeout)
                return std::nullopt;
        }
    }

  private:
    void Read(const std::string& path, const httplib::Headers& headers) {
        std::string rest;
        const auto take = [&](const char* data, std::size_t size) {
            rest.append(data, size);
            for (auto end = rest.find("\n\n"); end != rest.npos; end = rest.find("\n\n")) {
                Take(rest.substr(0, end));
                rest.erase(0, end + 2);
            }
            return !isLeaving_.load();
        };
        (void)client_->Get("/api/v1" + path, headers, take);
        const std::lock_guard hold(mutex_);
        isOver_ = true;
        news_.notify_all();
    }

    void Take(const std::string& block) {
        Event event;
        std::istringstream lines(block);
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("id: ")) event.id = line.substr(4);
            if (line.starts_with("event: ")) event.name = line.substr(7);
            if (line.starts_with("data: ")) event.data = nlohmann::json::parse(line.substr(6));
        }
        if (event.data.is_null()) return;  // a sign of life
        const std::lock_guard hold(mutex_);
        events_.push_back(std::move(event));
        news_.notify_all();
    }

    std::unique_ptr<httplib::Client> client_;
    std::mutex mutex_;
    std::condition_variable news_;
    std::deque<Event> events_;
    bool isOver_ = false;
    std::atomic<bool> isLeaving_{false};
    std::thread thread_;
};

}  // namespace oam::test
