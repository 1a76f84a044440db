#include "login/login.h"

#include "listener/certificates.h"
#include "listener/guard.h"
#include "listener/replies.h"
#include "login/secret.h"
#include "mirror/mirror.h"
#include "oam/v1/host.pb.h"

namespace oam::console {
namespace {

constexpr const char* kFormTokenHeader = "X-OAM-Form-Token";
constexpr std::string_view kBearer = "Bearer ";

std::string cookieIn(const httplib::Request& request, const std::string& name) {
    const std::string all = "; " + request.get_header_value("Cookie");
    const auto at = all.find("; " + name + '=');
    if (at == all.npos) return {};
    const auto begin = at + 2 + name.size() + 1;
    return all.substr(begin, all.find(';', begin) - begin);
}

std::string member(const Json& json, const char* name) {
    const auto found = json.find(name);
    return found != json.end() && found->is_string() ? found->get<std::string>() : std::string();
}

bool isSet(const Json& json, const char* name) {
    const auto found = json.find(name);
    return found != json.end() && found->is_boolean() && found->get<bool>();
}

}  // namespace

Login::Login(const Settings& settings, DaemonConnection& daemon)
    : hasTls_(settings.HasTls()),
      withPasswords_(settings.withPasswords),
      withCertificates_(!settings.tls.clientAuthorities.empty()),
      daemon_(daemon),
      token_(settings.HasLogin() ? "" : NewSecret()),
      passwords_(settings.pamService, settings.pamDirectory) {}

void Login::SetPort(int port) {
    // The prefix makes browsers insist on TLS and on this very host.
    cookie_ = std::string(hasTls_ ? "__Host-" : "") + "oam_console_" + std::to_string(port);
}

std::optional<Login::Known> Login::Find(const httplib::Request& request) {
    Known known;
    const std::string authorization = request.get_header_value("Authorization");
    if (authorization.starts_with(kBearer)) {
        known.secret = authorization.substr(kBearer.size());
        if (!token_.empty() && IsSameSecret(known.secret, token_)) return known;
    } else {
        known.secret = cookieIn(request, cookie_);
        known.isCookie = true;
    }
    auto session = sessions_.Find(known.secret);
    if (!session) return std::nullopt;
    known.session = *std::move(session);
    return known;
}

std::optional<Identity> Login::Admit(const httplib::Request& request, httplib::Response& response) {
    const auto known = Find(request);
    if (!known) {
        RefuseStranger(request, response);
        return std::nullopt;
    }
    const bool isForgeable = known->isCookie && !Guard::ChangesNothing(request.method);
    if (isForgeable &&
        !IsSameSecret(request.get_header_value(kFormTokenHeader), known->session.formToken)) {
        Refuse(response, 403, "no-form-token",
               std::string("what changes anything needs the header ") + kFormTokenHeader,
               "GET /api/v1/session tells it");
        return std::nullopt;
    }
    return known->session.identity;
}

void Login::Serve(const httplib::Request& request, httplib::Response& response,
                  const std::string& body) {
    if (request.method == "GET") return Tell(request, response);
    if (request.method == "POST") return Begin(request, response, body);
    if (request.method == "DELETE") return End(request, response);
    Refuse(response, 405, "wrong-method", "a session is asked for, begun or ended");
}

void Login::Tell(const httplib::Request& request, httplib::Response& response) {
    const auto known = Find(request);
    if (!known) return RefuseStranger(request, response);
    Json json;
    if (known->isCookie) json["formToken"] = known->session.formToken;
    std::string bytes;
    const auto status = daemon_.Call("/oam.v1.Host/GetHost", "", &bytes, known->session.identity,
                                     /*mayRepeat=*/true);
    v1::HostInfo host;
    json["reachable"] = status.ok() && host.ParseFromString(bytes);
    json["user"] = host.user();
    json["role"] = host.role();
    if (!status.ok()) json.update(RefusalJson(status));
    Reply(response, 200, json);
}

void Login::Begin(const httplib::Request& request, httplib::Response& response,
                  const std::string& body) {
    const Json given = Json::parse(body, nullptr, false);
    if (!given.is_object()) return Refuse(response, 400, "invalid", "the body is no JSON object");
    const auto identity = Check(request, response, given);
    if (!identity) return;
    const std::string secret = sessions_.Begin(*identity);
    const auto session = sessions_.Find(secret);
    Json json;
    if (isSet(given, "bearer")) {
        json["bearer"] = secret;
    } else {
        json["formToken"] = session->formToken;
        response.set_header("Set-Cookie", SetCookie(secret, false));
    }
    Reply(response, 200, json);
}

std::optional<Identity> Login::Check(const httplib::Request& request, httplib::Response& response,
                                     const Json& given) {
    if (isSet(given, "certificate") && withCertificates_) {
        if (auto name = NameOfClient(request.ssl))
            return Identity{Identity::Kind::kCertificate, *std::move(name)};
        Refuse(response, 401, "not-logged-in", "no certificate was shown");
        return std::nullopt;
    }
    if (given.contains("user") && withPasswords_) {
        const std::string user = member(given, "user");
        switch (passwords_.Check(user, member(given, "password"))) {
            case Passwords::Verdict::kRight:
                return Identity{Identity::Kind::kUser, user};
            case Passwords::Verdict::kBusy:
                response.set_header("Retry-After", "2");
                Refuse(response, 429, "busy", "too many logins at a time", "try again");
                return std::nullopt;
            case Passwords::Verdict::kWrong:
                break;
        }
        Refuse(response, 401, "not-logged-in", "the user or the password is wrong");
        return std::nullopt;
    }
    if (given.contains("token") && !token_.empty()) {
        if (IsSameSecret(member(given, "token"), token_)) return Identity{};
        Refuse(response, 401, "not-logged-in", "this is not the token of this start",
               "the gateway prints it when it starts");
        return std::nullopt;
    }
    RefuseStranger(request, response);
    return std::nullopt;
}

void Login::End(const httplib::Request& request, httplib::Response& response) {
    if (!Admit(request, response)) return;
    sessions_.End(Find(request)->secret);
    response.set_header("Set-Cookie", SetCookie("", true));
    Reply(response, 200, Json::object());
}

void Login::RefuseStranger(const httplib::Request& request, httplib::Response& response) const {
    Json json = RefusalJson("not-logged-in", "nobody is logged in");
    Json& ways = json["login"] = Json::array();
    if (!token_.empty()) ways.push_back("token");
    if (withPasswords_) ways.push_back("password");
    if (withCertificates_ && NameOfClient(request.ssl)) ways.push_back("certificate");
    Reply(response, 401, json);
}

std::string Login::SetCookie(const std::string& value, bool isEnd) const {
    return cookie_ + '=' + value + "; Path=/; HttpOnly; SameSite=Strict" +
           (hasTls_ ? "; Secure" : "") + (isEnd ? "; Max-Age=0" : "");
}

}  // namespace oam::console
