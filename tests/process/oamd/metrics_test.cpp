// The metrics as Prometheus reads them: well-formed, and of what has happened.
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "daemon_test.h"
#include "support/http.h"

namespace oam::test {
namespace {

using Samples = std::map<std::string, double>;

// By "name{labels}"; what is not of the format fails the test.
Samples parse(const std::string& text) {
    static const std::regex kHelp("# HELP ([a-z_]+) \\S.*"),
        kType("# TYPE ([a-z_]+) (counter|gauge|histogram|summary)"),
        kSample("([a-z_]+)(\\{(?:[a-z]+=\"(?:[^\"\\\\]|\\\\.)*\",?)+\\})? (\\S+)");
    Samples samples;
    std::set<std::string> families;
    std::string family, type;
    std::istringstream lines(text);
    EXPECT_TRUE(text.ends_with('\n'));
    for (std::string line; std::getline(lines, line);) {
        std::smatch parts;
        if (std::regex_match(line, parts, kHelp)) {
            family = parts[1];
            EXPECT_TRUE(families.insert(family).second) << "twice: " << line;
        } else if (std::regex_match(line, parts, kType)) {
            EXPECT_EQ(parts[1], family);
            type = parts[2];
            EXPECT_EQ(type == "counter", family.ends_with("_total")) << line;
        } else if (std::regex_match(line, parts, kSample)) {
            const std::string name = parts[1];
            const bool hasSuffix = type == "histogram" || type == "summary";
            EXPECT_TRUE(hasSuffix ? name.starts_with(family + "_") : name == family) << line;
            EXPECT_TRUE(samples.emplace(name + parts[2].str(), std::stod(parts[3])).second)
                << "twice: " << line;
        } else {
            ADD_FAILURE() << "no line of the format: " << line;
        }
    }
    return samples;
}

class DaemonMetrics : public DaemonTest {
  protected:
    DaemonMetrics() { options = {"--metrics", "0"}; }

    std::string Text() const {
        const std::string told = "metrics at ";
        const std::string address = where.substr(where.find(told) + told.size());
        return BodyOf(HttpGet(address, "/metrics"));
    }
    Samples Scrape() const { return parse(Text()); }
    // Scrapes until the sample has the value.
    testing::AssertionResult Becomes(const std::string& name, double value) const {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        double last = -1;
        while (std::chrono::steady_clock::now() < limit) {
            const Samples samples = Scrape();
            const auto found = samples.find(name);
            if (found != samples.end()) last = found->second;
            if (last == value) return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << name << " is " << last << ", not " << value;
    }
};

TEST_F(DaemonMetrics, CountOperationsAlertsAndRequests) {
    Start(kMixedChassis);
    Client client(home);
    (void)Wait(client, StartBoard(client, "Good"), 60);
    (void)Wait(client, StartBoard(client, "Bad"), 60);
    (void)StartBoard(client, "Bogus");
    v1::GetOperationRequest request;
    request.set_id("9999-1");
    v1::Operation nothing;
    (void)Call(*client.operations, &v1::Operations::Stub::GetOperation, request, &nothing);

    EXPECT_TRUE(Becomes("oam_board_operations_total{operation=\"start\",outcome=\"done\"}", 1));
    EXPECT_TRUE(Becomes("oam_board_operations_total{operation=\"start\",outcome=\"failed\"}", 1));
    EXPECT_TRUE(Becomes("oam_board_operations_total{operation=\"start\",outcome=\"refused\"}", 1));
    EXPECT_TRUE(
        Becomes("oam_requests_total{method=\"/oam.v1.Operations/StartBoard\",code=\"OK\"}", 3));
    EXPECT_TRUE(Becomes(
        "oam_requests_total{method=\"/oam.v1.Operations/GetOperation\",code=\"NOT_FOUND\"}", 1));
    Samples samples = Scrape();
    EXPECT_EQ(samples["oam_board_operation_duration_seconds_count{operation=\"start\"}"], 2);
    EXPECT_EQ(samples["oam_alerts_total{code=\"OAMEVN_STARTBOARD_DONE\",severity=\"information\"}"],
              1);
    EXPECT_EQ(samples["oam_alerts_total{code=\"OAMEVN_STARTBOARD_DONE\",severity=\"error\"}"], 1);
    EXPECT_EQ(
        samples["oam_plugin_call_duration_seconds_count{plugin=\"sim.bpi\",entry=\"StartBoard\"}"],
        2);
    EXPECT_EQ(samples["oam_boards"], 3);
    EXPECT_EQ(samples["oam_shadow_overflow_boards"], 0);
    EXPECT_EQ(samples["oam_service_running"], 1);
    EXPECT_EQ(samples["oam_lanes_threads"], 32);
    EXPECT_EQ(samples.count("oam_build_info{version=\"1.0.0\"}"), 1u);
    EXPECT_GT(samples["process_resident_memory_bytes"], 1e6);
    EXPECT_GT(samples["oam_alert_newest_number"], 0);
}

// Each "oam_..." that the pattern finds, in its first group.
std::set<std::string> namesIn(const std::string& text, const std::string& pattern) {
    const std::regex name(pattern);
    std::set<std::string> names;
    for (std::sregex_iterator at(text.begin(), text.end(), name), end; at != end; ++at)
        names.insert((*at)[1]);
    return names;
}

TEST_F(DaemonMetrics, AreTheOnesThatTheManualNames) {
    Start(kMixedChassis);
    std::ifstream file(OAM_DAEMON_MANUAL);
    const std::string manual{std::istreambuf_iterator<char>(file), {}};
    const auto told = namesIn(Text(), "# TYPE (oam_[a-z_]+) ");
    EXPECT_EQ(told, namesIn(manual, "\\b(oam_[a-z_]+)"));
    EXPECT_THAT(told, ::testing::IsSupersetOf(
                          {"oam_board_operations_total", "oam_board_operation_duration_seconds",
                           "oam_alerts_total", "oam_plugin_call_duration_seconds",
                           "oam_plugin_call_in_flight", "oam_shadow_overflow_boards"}));
}

TEST_F(DaemonMetrics, NameTheCallThatDoesNotReturn) {
    Start(kMixedChassis);
    {
        Client client(home);
        (void)StartBoard(client, "Stuck");
    }
    EXPECT_TRUE(Becomes("oam_plugin_call_in_flight{plugin=\"sim.bpi\",entry=\"StartBoard\"}", 1));
    EXPECT_TRUE(Becomes("oam_board_operations_running", 1));
    const std::string age =
        "oam_plugin_call_oldest_seconds{plugin=\"sim.bpi\",entry=\"StartBoard\"}";
    const double first = Scrape()[age];
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (Scrape()[age] <= first) ASSERT_LT(std::chrono::steady_clock::now(), limit);
    Kill();
}

TEST_F(DaemonMetrics, TellHowManyBoardsTheShadowHasNoRoomFor) {
    std::string chassis;
    constexpr int kBoards = 40;
    for (int i = 0; i < kBoards; ++i)
        chassis += "board: B" + std::to_string(i) +
                   "\nproduct: SIM-E1\nbus: " + std::to_string(1 + i / 32) +
                   "\nslot: " + std::to_string(i % 32) + "\n\n";
    Start(chassis);
    EXPECT_TRUE(Becomes("oam_boards", kBoards));
    EXPECT_TRUE(Becomes("oam_shadow_overflow_boards", kBoards - 31));
}

TEST_F(DaemonMetrics, CountWatchersAndThoseOfThemThatAreBehind) {
    Start(kMixedChassis);
    Client client(home);
    grpc::ClientContext context;
    v1::WatchAlertsRequest request;
    const auto stream = client.alerts->WatchAlerts(&context, request);
    EXPECT_TRUE(Becomes("oam_alert_watchers", 1));
    EXPECT_TRUE(Becomes("oam_alert_watcher_lag", 0));
    EXPECT_TRUE(Becomes("oam_alert_ring_lag", 0));
    context.TryCancel();
    EXPECT_TRUE(Becomes("oam_alert_watchers", 0));
}

TEST_F(DaemonMetrics, AreOffUnlessAskedFor) {
    options.clear();
    Start();
    EXPECT_EQ(where.find("metrics"), std::string::npos) << where;
}

class HungDaemonMetrics : public DaemonMetrics {};

TEST_F(HungDaemonMetrics, AreThereWhileTheDatabaseIsHeld) {
    std::filesystem::copy_file(OAM_HANGING_PLUGIN, home.Path("lib/hanging.bpi"));
    StartAgain();
    Tool({"board", "add", "--all"});
    home.Write("hang.GetKeyword", "");
    std::thread reader([&] {
        Client client(home);
        v1::ReadObjectRequest request;
        request.set_name("Demo board");
        v1::ReadObjectResponse response;
        EXPECT_TRUE(Call(*client.objects, &v1::Objects::Stub::ReadObject, request, &response).ok());
    });
    EXPECT_TRUE(
        Becomes("oam_plugin_call_in_flight{plugin=\"hanging.bpi\",entry=\"GetKeyword\"}", 1));
    EXPECT_TRUE(Becomes("oam_requests_in_flight{method=\"/oam.v1.Objects/ReadObject\"}", 1));
    home.Remove("hang.GetKeyword");
    reader.join();
    EXPECT_TRUE(
        Becomes("oam_plugin_call_in_flight{plugin=\"hanging.bpi\",entry=\"GetKeyword\"}", 0));
}

}  // namespace
}  // namespace oam::test
