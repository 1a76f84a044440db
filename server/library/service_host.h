// The service in this process: its life, and where its alerts go.
//
// There is one in a process. Its alert callback runs on the service's threads, at times with the
// service's locks held; it numbers the alert, matches it with an operation and hands it to the
// ring, and waits for nobody.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

#include "alerts/alert_ring.h"
#include "metrics/alert_counts.h"
#include "oam/message.h"
#include "operations/operation_book.h"

namespace oam::server {

class ServiceHost {
  public:
    // An alert for one client of the service that has registered for them.
    using ToClient = std::function<void(unsigned long client, const StoredAlert& alert)>;

    ServiceHost(AlertRing& ring, OperationBook& operations);
    // Stops it.
    ~ServiceHost();
    ServiceHost(const ServiceHost&) = delete;
    ServiceHost& operator=(const ServiceHost&) = delete;

    // Before the first Start. It must not wait or throw.
    void SetToClient(ToClient toClient) { toClient_ = std::move(toClient); }

    // The code of the start; 0 also when it runs already.
    unsigned Start();
    void Stop();

    bool IsRunning() const;
    // Of the alerts that were for everybody.
    const AlertCounts& Alerts() const { return alerts_; }
    // Of the last Start.
    unsigned Code() const { return code_; }
    std::chrono::system_clock::time_point Started() const { return started_; }

  private:
    static unsigned Receive(unsigned long client, const oam_msg_tag* message) noexcept;
    void Take(unsigned long client, const oam_msg_tag& message) noexcept;

    AlertRing& ring_;
    OperationBook& operations_;
    AlertCounts alerts_;
    ToClient toClient_;
    std::atomic<unsigned> code_{0};
    std::atomic<std::chrono::system_clock::time_point> started_{};
};

}  // namespace oam::server
