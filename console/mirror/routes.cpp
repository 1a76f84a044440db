#include "mirror/routes.h"

#include <google/protobuf/descriptor.h>

#include <charconv>

#include "oam/v1/alerts.pb.h"
#include "oam/v1/boards.pb.h"
#include "oam/v1/configuration.pb.h"
#include "oam/v1/host.pb.h"
#include "oam/v1/objects.pb.h"
#include "oam/v1/operations.pb.h"
#include "oam/v1/sessions.pb.h"

namespace oam::console {
namespace {

std::vector<std::string_view> segmentsOf(std::string_view path) {
    std::vector<std::string_view> segments;
    if (path.starts_with('/')) path.remove_prefix(1);
    for (;;) {
        const auto slash = path.find('/');
        segments.push_back(path.substr(0, slash));
        if (slash == path.npos) return segments;
        path.remove_prefix(slash + 1);
    }
}

bool isPart(std::string_view segment) { return segment.starts_with('{') && segment.ends_with('}'); }

std::string_view partName(std::string_view segment) {
    return segment.substr(1, segment.size() - 2);
}

// The parts of a path that fits; a plain segment that fits is better than a part.
std::optional<std::map<std::string, std::string>> match(std::string_view pattern,
                                                        const std::vector<std::string_view>& path,
                                                        int* plain) {
    const auto wanted = segmentsOf(pattern);
    if (wanted.size() != path.size()) return std::nullopt;
    std::map<std::string, std::string> parts;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (!isPart(wanted[i])) {
            if (wanted[i] != path[i]) return std::nullopt;
            ++*plain;
            continue;
        }
        auto decoded = DecodePercent(path[i]);
        if (!decoded || decoded->empty()) return std::nullopt;
        parts.emplace(partName(wanted[i]), *std::move(decoded));
    }
    return parts;
}

// The files of the API are known to the pool once their code is in the program.
const google::protobuf::DescriptorPool& pool() {
    static const auto* const known = [] {
        (void)v1::Alert::descriptor();
        (void)v1::Board::descriptor();
        (void)v1::HistoryEntry::descriptor();
        (void)v1::HostInfo::descriptor();
        (void)v1::Keyword::descriptor();
        (void)v1::Operation::descriptor();
        (void)v1::AttachRequest::descriptor();
        return google::protobuf::DescriptorPool::generated_pool();
    }();
    return *known;
}

}  // namespace

const google::protobuf::MethodDescriptor& Route::Verb() const {
    return *pool().FindMethodByName(std::string("oam.v1.") + service + '.' + verb);
}

std::string Route::FullMethod() const { return std::string("/oam.v1.") + service + '/' + verb; }

std::vector<std::string> Route::Parts() const {
    std::vector<std::string> parts;
    for (const auto segment : segmentsOf(path))
        if (isPart(segment)) parts.emplace_back(partName(segment));
    return parts;
}

bool Route::TakesQuery() const {
    const std::string_view name = method;
    return name == "GET" || name == "DELETE";
}

const std::vector<Route>& Routes() {
    static const std::vector<Route> routes = {
#define OAM_ROUTE(method, path, service, verb, kind, role) \
    {method, path, service, verb, RouteKind::kind, role},
#include "mirror/routes.def"
#undef OAM_ROUTE
    };
    return routes;
}

FoundRoute FindRoute(std::string_view method, std::string_view path) {
    const auto segments = segmentsOf(path);
    FoundRoute best;
    int mostPlain = -1;
    for (const Route& route : Routes()) {
        int plain = 0;
        auto parts = match(route.path, segments, &plain);
        if (!parts) continue;
        if (route.method != method) {
            best.isOtherMethod = true;
        } else if (plain > mostPlain) {
            mostPlain = plain;
            best.route = &route;
            best.parts = *std::move(parts);
        }
    }
    return best;
}

std::optional<Query> ParseQuery(std::string_view query) {
    Query fields;
    while (!query.empty()) {
        const auto one = query.substr(0, query.find('&'));
        query.remove_prefix(std::min(one.size() + 1, query.size()));
        if (one.empty()) continue;
        const auto equals = one.find('=');
        auto name = DecodePercent(one.substr(0, equals));
        auto value = DecodePercent(equals == one.npos ? "" : one.substr(equals + 1));
        if (!name || !value) return std::nullopt;
        fields.emplace_back(*std::move(name), *std::move(value));
    }
    return fields;
}

std::optional<std::string> DecodePercent(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        unsigned byte = 0;
        const auto digits = text.substr(i + 1, 2);
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
        if (digits.size() != 2 || error != std::errc() || end != digits.data() + 2)
            return std::nullopt;
        decoded += static_cast<char>(byte);
        i += 2;
    }
    return decoded;
}

}  // namespace oam::console
