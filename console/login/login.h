// Logging in, and who asks.
//
//   GET    /api/v1/session   who is logged in, or 401 with the ways to log in
//   POST   /api/v1/session   {"token"}, {"user", "password"} or {"certificate": true}; a cookie, or
//   with
//                            "bearer": true a secret for the header "Authorization: Bearer"
//   DELETE /api/v1/session   logs out
//
// Without logins the gateway serves its own user on its own machine: whoever knows the token that
// it printed at its start (or left in a file that only this user may read) is that user.
#pragma once

#include <httplib.h>

#include <optional>
#include <string>

#include "daemon/daemon_connection.h"
#include "login/password.h"
#include "login/sessions.h"
#include "mirror/json_codec.h"
#include "settings.h"

namespace oam::console {

class Login {
  public:
    Login(const Settings& settings, DaemonConnection& daemon);

    // Empty when there are logins.
    const std::string& Token() const { return token_; }
    // Cookies know no ports; their names do.
    void SetPort(int port);

    // For whom a request is to be done. A refusal is answered, and nothing returned.
    std::optional<Identity> Admit(const httplib::Request& request, httplib::Response& response);
    // The session's own verbs.
    void Serve(const httplib::Request& request, httplib::Response& response,
               const std::string& body);

  private:
    struct Known {
        Session session;
        std::string secret;
        bool isCookie = false;
    };
    std::optional<Known> Find(const httplib::Request& request);
    void Tell(const httplib::Request& request, httplib::Response& response);
    void Begin(const httplib::Request& request, httplib::Response& response,
               const std::string& body);
    void End(const httplib::Request& request, httplib::Response& response);
    // Nothing: refused and answered.
    std::optional<Identity> Check(const httplib::Request& request, httplib::Response& response,
                                  const Json& given);
    void RefuseStranger(const httplib::Request& request, httplib::Response& response) const;
    std::string SetCookie(const std::string& value, bool isEnd) const;

    const bool hasTls_;
    const bool withPasswords_;
    const bool withCertificates_;
    DaemonConnection& daemon_;
    const std::string token_;
    std::string cookie_;
    Passwords passwords_;
    Sessions sessions_;
};

}  // namespace oam::console
