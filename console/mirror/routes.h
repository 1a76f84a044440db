// Which HTTP request is which verb of oam.v1 (routes.def has the table).
//
// A path is taken apart before its parts are decoded, so that a name may hold a slash, or any byte.
#pragma once

#include <google/protobuf/descriptor.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace oam::console {

enum class RouteKind { kUnary, kEvents, kExport, kImport };

struct Route {
    const char* method;
    const char* path;
    const char* service;
    const char* verb;
    RouteKind kind;
    const char* role;

    // Of the verb in the API.
    const google::protobuf::MethodDescriptor& Verb() const;
    // "/oam.v1.Boards/ListBoards"
    std::string FullMethod() const;
    // The names of the path's {parts}.
    std::vector<std::string> Parts() const;
    // Whether what is not in the path comes as the query, and nothing as a body.
    bool TakesQuery() const;
};

const std::vector<Route>& Routes();

struct FoundRoute {
    const Route* route = nullptr;              // null: no such path, or
    bool isOtherMethod = false;                // not with this method
    std::map<std::string, std::string> parts;  // decoded
};

// `path` as it stands in the request, behind "/api/v1" and without a query.
FoundRoute FindRoute(std::string_view method, std::string_view path);

// The query's fields in order, decoded. Nothing when an escape is wrong.
using Query = std::vector<std::pair<std::string, std::string>>;
std::optional<Query> ParseQuery(std::string_view query);

// "%41" as "A"; nothing when an escape is wrong.
std::optional<std::string> DecodePercent(std::string_view text);

}  // namespace oam::console
