// The local socket: accepts in a thread of its own and hands each connection over.
//
// Anyone on the host may connect; what a caller may do is decided for each call. A socket file that
// nobody listens on any more is replaced; one that somebody serves is a failure.
#pragma once

#include <functional>
#include <string>
#include <thread>

namespace oam::server {

class UnixListener {
  public:
    // Listens at the path, or on a socket that systemd passed on (`inherited` >= 0). `accepted`
    // gets each connection's descriptor, which it owns. std::system_error when it cannot listen.
    UnixListener(std::string path, int inherited, std::function<void(int)> accepted);
    // Ends listening, and removes the file that it made.
    ~UnixListener();
    UnixListener(const UnixListener&) = delete;
    UnixListener& operator=(const UnixListener&) = delete;

  private:
    void Listen();
    void Work();

    const std::string path_;
    const std::function<void(int)> accepted_;
    bool isOurs_;
    int socket_;
    int stop_;  // eventfd
    std::thread thread_;
};

}  // namespace oam::server
