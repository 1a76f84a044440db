#include "fleet_test.h"

#include <signal.h>

#include "fleet/link/bucket.h"
#include "fleet/names.h"

namespace oam::test {

FleetTest::FleetTest() : engine(home.Path("engine")) {}

void FleetTest::TearDown() {
    if (agent) EndAgent();
    DaemonTest::TearDown();
}

void FleetTest::StartAll() {
    home.Write("oam/roles.conf",
               "user root admin\neveryone admin\ncertificate viewer viewer\n"
               "certificate operator operator\ncertificate configurator configurator\n"
               "certificate admin admin\n");
    engine.Start();
    MakeStreams();
    Start(kMixedChassis);
    StartAgent();
}

void FleetTest::MakeStreams() {
    const Finished made = Fleet("keeper", {"init", "--replicas", "1"});
    ASSERT_EQ(made.status, 0) << made.err;
}

void FleetTest::StartAgent() {
    std::vector<std::string> command{OAM_FLEETD, "--name", kHostName};
    for (const std::string& option : engine.OptionsOf("host-1")) command.push_back(option);
    command.insert(command.end(), agentOptions.begin(), agentOptions.end());
    agent = std::make_unique<ChildProcess>(command, home.Root());
    agent->AwaitError("host h.1");
}

void FleetTest::EndAgent() {
    agent->Signal(SIGTERM);
    EXPECT_EQ(agent->Finish().status, 0);
    agent.reset();
}

void FleetTest::KillAgent() {
    agent->Signal(SIGKILL);
    (void)agent->Finish();
    agent.reset();
}

Finished FleetTest::Fleet(const std::string& user, const std::vector<std::string>& words) const {
    std::vector<std::string> command{OAM_TOOL, "fleet"};
    for (const std::string& option : engine.OptionsOf(user)) command.push_back(option);
    command.insert(command.end(), words.begin(), words.end());
    return ChildProcess(command, home.Root()).Finish();
}

Json FleetTest::FleetJson(const std::string& user, const std::vector<std::string>& words,
                          int status) const {
    std::vector<std::string> all{"--json"};
    all.insert(all.end(), words.begin(), words.end());
    const Finished run = Fleet(user, all);
    EXPECT_EQ(run.status, status) << run.err << run.out;
    const Json json = Json::parse(run.out, nullptr, false);
    EXPECT_FALSE(json.is_discarded()) << run.out;
    return json.is_discarded() ? Json::object() : json;
}

std::string FleetTest::Presence() const {
    const Json json = FleetJson("viewer", {"hosts"});
    return json["hosts"].empty() ? "unknown" : json["hosts"][0]["presence"].get<std::string>();
}

bool FleetTest::AwaitPresence(const std::string& wanted, std::chrono::milliseconds limit) const {
    return Await([&] { return Presence() == wanted; }, limit);
}

void FleetTest::Raise(const std::string& text, int times) {
    Client client(home);
    for (int i = 0; i < times; ++i) {
        v1::NotifyAlertRequest request;
        request.set_code(0x7001);
        request.set_source("test");
        request.set_text(text);
        v1::NotifyAlertResponse taken;
        const auto status = Call(*client.alerts, &v1::Alerts::Stub::NotifyAlert, request, &taken);
        ASSERT_TRUE(status.ok()) << status.error_message();
    }
}

std::uint64_t FleetTest::Newest() {
    Client client(home);
    v1::HostInfo info;
    EXPECT_TRUE(Call(*client.host, &v1::Host::Stub::GetHost, v1::GetHostRequest(), &info).ok());
    return info.newest_alert();
}

std::unique_ptr<fleet::Link> FleetTest::LinkOf(const std::string& user) const {
    fleet::LinkSettings settings;
    settings.servers = {engine.Url()};
    settings.user = user;
    settings.passwordFile = engine.OptionsOf(user).back();
    return std::make_unique<fleet::Link>(settings, user);
}

std::vector<fleet::AlertRecord> FleetTest::Records() const {
    const Finished run = Fleet("viewer", {"alerts", "--kept", "--json"});
    EXPECT_EQ(run.status, 0) << run.err;
    std::vector<fleet::AlertRecord> records;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) records.push_back(fleet::ReadAlert(line));
    return records;
}

bool FleetTest::AwaitInStream(std::uint64_t sequence) const {
    const auto link = LinkOf("viewer");
    return Await([&] {
        const auto last =
            fleet::LastWith(*link, fleet::kAlertStream, fleet::AlertSubject(kHostName));
        return last && fleet::ReadAlert(last->data).sequence >= sequence;
    });
}

void ExpectGapless(const std::vector<fleet::AlertRecord>& records, std::uint64_t last) {
    std::uint64_t passed = 0;
    for (const fleet::AlertRecord& record : records) {
        const std::uint64_t first =
            record.kind == fleet::AlertRecord::Kind::kGap ? record.first : record.sequence;
        ASSERT_EQ(first, passed + 1) << record.alert.dump();
        passed = record.sequence;
    }
    EXPECT_EQ(passed, last);
}

}  // namespace oam::test
