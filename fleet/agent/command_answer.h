// The way back of one request: its messages, and that the host is at work. Any thread.
#pragma once

#include <grpcpp/support/status.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <string>

#include "fleet/link/link.h"
#include "mirror/routes.h"

namespace oam::fleet {

class CommandAnswer {
  public:
    CommandAnswer(std::shared_ptr<Link> link, natsMsg& request);

    // Whether anybody can still be told.
    bool IsWanted() const { return link_->IsUp(); }
    bool IsProtobuf() const { return isProtobuf_; }
    bool HasProgress() const { return hasProgress_; }
    const std::string& Subject() const { return subject_; }
    const std::string& Data() const { return data_; }

    // With Oam-Progress alone, and before the end.
    void Taken();
    // When it was silent for a while.
    void Working();
    void Message(const console::Route& route, const std::string& bytes);
    // One that is larger than the server takes becomes a refusal that says so.
    void End(const console::Route& route, const std::string& bytes);
    void Refuse(const grpc::Status& status);

  private:
    void Send(const char* kind, const std::string& data, const std::string& status = {});
    std::string Told(const console::Route& route, const std::string& bytes) const;

    const std::shared_ptr<Link> link_;
    const std::string subject_;
    const std::string reply_;
    const std::string data_;
    const bool isProtobuf_;
    const bool hasProgress_;
    std::mutex mutex_;
    bool isOver_ = false;
    std::chrono::steady_clock::time_point last_;
};

}  // namespace oam::fleet
