// The table of routes against the API it mirrors, and the description against the table.
#include <google/protobuf/descriptor.h>

#include <set>

#include "console_test.h"
#include "mirror/openapi.h"
#include "mirror/routes.h"

namespace oam::console {
namespace {

TEST(ConsoleRoutes, MirrorEveryVerbOfTheApi) {
    std::set<std::string> mirrored;
    for (const Route& route : Routes()) mirrored.insert(route.Verb().full_name());
    const auto& pool = *google::protobuf::DescriptorPool::generated_pool();
    int verbs = 0;
    for (const char* name :
         {"Alerts", "Boards", "Configuration", "Host", "Objects", "Operations", "Sessions"}) {
        const auto* const service = pool.FindServiceByName(std::string("oam.v1.") + name);
        ASSERT_NE(service, nullptr) << name;
        for (int i = 0; i < service->method_count(); ++i, ++verbs)
            EXPECT_EQ(mirrored.count(service->method(i)->full_name()), 1u)
                << service->method(i)->full_name();
    }
    EXPECT_GE(verbs, 50);
}

TEST(ConsoleRoutes, NameOnlyFieldsThatTheirRequestsHave) {
    for (const Route& route : Routes())
        for (const std::string& part : route.Parts())
            EXPECT_NE(route.Verb().input_type()->FindFieldByCamelcaseName(part), nullptr)
                << route.path;
}

TEST(ConsoleRoutes, StreamWhatTheApiStreams) {
    for (const Route& route : Routes()) {
        const bool isStream = route.kind == RouteKind::kEvents || route.kind == RouteKind::kExport;
        EXPECT_EQ(route.Verb().server_streaming(), isStream) << route.path;
        EXPECT_EQ(route.Verb().client_streaming(), route.kind == RouteKind::kImport) << route.path;
    }
}

TEST(ConsoleRoutes, AgreeWithTheDescriptionThatIsInstalled) {
    std::ifstream file(OAM_OPENAPI);
    const Json described = Json::parse(file, nullptr, false);
    EXPECT_TRUE(described == OpenApi())
        << "build/<preset>/bin/oam-console --openapi >console/openapi.json";
    std::size_t operations = 0;
    for (const auto& [path, methods] : described["paths"].items()) operations += methods.size();
    EXPECT_EQ(operations, Routes().size());
}

TEST(ConsoleRoutes, TakeAPathApartBeforeDecodingIt) {
    const auto found = FindRoute("GET", "/boards/a%2Fb%ff%20c");
    ASSERT_NE(found.route, nullptr);
    EXPECT_STREQ(found.route->verb, "GetBoard");
    EXPECT_EQ(found.parts.at("name"), "a/b\xff c");
    EXPECT_EQ(FindRoute("GET", "/boards/a/b").route, nullptr);
    EXPECT_EQ(FindRoute("GET", "/boards/").route, nullptr);
    EXPECT_EQ(FindRoute("GET", "/boards/a%2").route, nullptr);
    EXPECT_EQ(FindRoute("GET", "/boards/a%zz").route, nullptr);
}

TEST(ConsoleRoutes, PreferAPlainSegmentToAPart) {
    EXPECT_STREQ(FindRoute("GET", "/boards/status/status").route->verb, "GetBoardStatus");
    EXPECT_STREQ(FindRoute("POST", "/sessions/open").route->verb, "Open");
    EXPECT_TRUE(FindRoute("POST", "/boards").isOtherMethod);
    EXPECT_FALSE(FindRoute("POST", "/nothing").isOtherMethod);
}

}  // namespace
}  // namespace oam::console
