// Serves one text over HTTP, at "/metrics" of an address of its own.
//
// One thread for all connections, and none waits for another: each has a deadline, and there are
// only so many at a time. A request is read up to its blank line, answered, and the connection
// closed. What is asked for is never more than a name.
#pragma once

#include <chrono>
#include <functional>
#include <list>
#include <string>
#include <thread>

#include "metrics/listen_address.h"

namespace oam::server {

class MetricsListener {
  public:
    // `text` runs on the listener's thread and must not wait. std::system_error when it cannot
    // listen.
    MetricsListener(const ListenAddress& address, std::function<std::string()> text);
    ~MetricsListener();
    MetricsListener(const MetricsListener&) = delete;
    MetricsListener& operator=(const MetricsListener&) = delete;

    // As a client writes it, with the port that was given when any was asked for.
    std::string Address() const;

  private:
    struct Connection {
        int socket;
        std::chrono::steady_clock::time_point deadline;
        std::string request;
        std::string answer;  // what is left of it
        bool isAnswering = false;
    };

    void Work();
    void Accept();
    // False when the connection is over.
    bool GoOn(Connection& connection) const;
    std::string AnswerTo(const std::string& request) const;

    const std::function<std::string()> text_;
    int socket_;
    int stop_;  // eventfd
    std::list<Connection> connections_;
    std::thread thread_;
};

}  // namespace oam::server
