// The gateway: one HTTP server, and what it serves to whom.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "daemon/daemon_connection.h"
#include "listener/event_streams.h"
#include "listener/guard.h"
#include "listener/live_certificates.h"
#include "listener/mirror_calls.h"
#include "listener/workers.h"
#include "login/login.h"
#include "settings.h"

namespace oam::console {

class Gateway {
  public:
    // Takes the address; what prevents it is a std::runtime_error.
    Gateway(const Settings& settings, const std::string& socketPath);
    ~Gateway();

    // "http://127.0.0.1:7311/"
    const std::string& Address() const { return address_; }
    // Empty when there are logins.
    const std::string& Token() const { return login_.Token(); }

    // Serves until Stop; any thread may call that.
    void Serve();
    void Stop();

    // Reads the certificate files again; what is wrong with them is a std::runtime_error, and those
    // read before stay in use. Without TLS it does nothing. Any thread.
    void ReloadCertificates();

  private:
    void MakeGuard();
    void SetUp(httplib::Server& server);
    void Handle(const httplib::Request& request, httplib::Response& response,
                const httplib::ContentReader* reader);
    void HandleApi(const httplib::Request& request, httplib::Response& response,
                   const std::string& path, const std::string& query,
                   const httplib::ContentReader* reader);

    const std::vector<std::string> names_;  // of the settings; the certificate has more
    DaemonConnection daemon_;
    const std::shared_ptr<Workers::Counts> counts_;
    EventStreams streams_;
    MirrorCalls calls_;
    Login login_;
    std::unique_ptr<LiveCertificates> certificates_;  // none without TLS
    std::unique_ptr<httplib::Server> server_;
    std::atomic<std::shared_ptr<const Guard>> guard_;
    int port_ = 0;
    std::string address_;
    std::atomic<bool> isStopping_{false};
    std::atomic<bool> hasEnded_{false};
};

}  // namespace oam::console
