// The mirror's requests: found in the table, asked of the daemon, answered.
#pragma once

#include <httplib.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "daemon/daemon_connection.h"
#include "listener/event_streams.h"
#include "mirror/mirror.h"

namespace oam::console {

class MirrorCalls {
  public:
    MirrorCalls(DaemonConnection& daemon, EventStreams& streams)
        : daemon_(daemon), streams_(streams) {}

    // `path` behind "/api/v1", as it stands in the request.
    void Serve(const httplib::Request& request, httplib::Response& response,
               const Identity& identity, const std::string& path, const std::string& query,
               const std::string& body);

    // How long the body of such a request may be.
    static std::size_t LongestBody(const std::string& method, const std::string& path);

  private:
    void Events(const httplib::Request& request, httplib::Response& response,
                const Identity& identity, const Route& route, const std::string& bytes);
    void Export(httplib::Response& response, const Identity& identity, const Route& route);
    void Import(httplib::Response& response, const Identity& identity, const std::string& bytes,
                const std::string& file);

    DaemonConnection& daemon_;
    EventStreams& streams_;
};

}  // namespace oam::console
