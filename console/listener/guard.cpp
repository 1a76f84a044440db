#include "listener/guard.h"

namespace oam::console {
namespace {

constexpr std::size_t kLongestTarget = 4096;

std::string lower(std::string text) {
    for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

}  // namespace

Guard::Guard(const std::vector<std::string>& names, int port) {
    for (const std::string& given : names) {
        const bool isV6 = given.find(':') != given.npos && given.front() != '[';
        const std::string name = lower(isV6 ? '[' + given + ']' : given);
        hosts_.insert(name + ':' + std::to_string(port));
        if (port == 443 || port == 80) hosts_.insert(name);
    }
}

std::optional<Guard::Objection> Guard::Look(const httplib::Request& request) const {
    if (request.get_header_value_count("Host") != 1 || !IsOurs(request.get_header_value("Host")))
        return Objection{421, "wrong-host", "this host is not known by that name; --name adds one"};
    if (request.target.size() > kLongestTarget)
        return Objection{414, "too-long", "the address is too long"};
    if (request.has_header("Transfer-Encoding"))
        return Objection{411, "no-length", "a body needs a Content-Length"};
    if (request.has_header("Content-Encoding"))
        return Objection{415, "encoded", "a body must not be compressed"};
    const std::string site = request.get_header_value("Sec-Fetch-Site");
    const bool isNavigation =
        request.get_header_value("Sec-Fetch-Mode") == "navigate" && ChangesNothing(request.method);
    if (!site.empty() && site != "same-origin" && site != "none" && !isNavigation)
        return Objection{403, "foreign-page", "a page of another site asked for this"};
    if (!ChangesNothing(request.method) && request.has_header("Origin")) {
        const std::string origin = request.get_header_value("Origin");
        const auto slashes = origin.find("://");
        if (slashes == origin.npos || !IsOurs(origin.substr(slashes + 3)))
            return Objection{403, "foreign-page", "a page of another site asked for this"};
    }
    return std::nullopt;
}

bool Guard::IsOurs(std::string host) const { return hosts_.count(lower(std::move(host))) > 0; }

bool Guard::ChangesNothing(const std::string& method) {
    return method == "GET" || method == "HEAD";
}

httplib::Headers Guard::Headers(bool isTls) {
    httplib::Headers headers = {
        {"Content-Security-Policy",
         "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
         "connect-src 'self'; form-action 'none'; base-uri 'none'; frame-ancestors 'none'; "
         "require-trusted-types-for 'script'; trusted-types 'none'"},
        {"X-Content-Type-Options", "nosniff"},
        {"X-Frame-Options", "DENY"},
        {"Referrer-Policy", "no-referrer"},
        {"Cross-Origin-Opener-Policy", "same-origin"},
        {"Cross-Origin-Resource-Policy", "same-origin"},
        {"Permissions-Policy", "camera=(), geolocation=(), microphone=(), usb=()"},
    };
    if (isTls) headers.emplace("Strict-Transport-Security", "max-age=31536000");
    return headers;
}

}  // namespace oam::console
