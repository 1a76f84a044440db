// Every verb of the interface: who may not is refused, told which role it takes, and the log has
// who it was, with which role, and what they wanted of what.
#include <google/protobuf/descriptor.h>
#include <google/protobuf/message.h>
#include <google/protobuf/text_format.h>
#include <signal.h>

#include <memory>
#include <set>

#include "daemon_test.h"
#include "raw_client.h"

namespace oam::test {
namespace {

namespace pb = google::protobuf;

struct Row {
    const char* method;
    const char* request;  // as protobuf's text
    const char* role;     // the least that may
    const char* verb;
    const char* object;  // as the log has it; empty: none
};

constexpr Row kRows[] = {
    {"Alerts/WatchAlerts", "filter { source: 'S' }", "viewer", "WatchAlerts", "S"},
    {"Alerts/ListAlerts", "filter { source: 'S' }", "viewer", "ListAlerts", "S"},
    {"Alerts/NotifyAlert", "source: 'S'", "operator", "NotifyAlert", "S"},
    {"Boards/ListBoards", "", "viewer", "ListBoards", ""},
    {"Boards/GetBoard", "name: 'B'", "viewer", "GetBoard", "B"},
    {"Boards/LookUpBoard", "number: 3", "viewer", "LookUpBoard", "number: 3"},
    {"Boards/GetBoardStatus", "board: 'B'", "viewer", "GetBoardStatus", "B"},
    {"Boards/SetShelfSlot", "board: 'B'", "configurator", "SetShelfSlot", "B"},
    {"Boards/ResetMacAddresses", "board: 'B'", "configurator", "ResetMacAddresses", "B"},
    {"Boards/SetMacAddresses", "board: 'B'", "configurator", "SetMacAddresses", "B"},
    {"Boards/SendBuffer", "board: 'B' buffer: 'x'", "admin", "SendBuffer", "B"},
    {"Boards/DetectBoards", "", "operator", "DetectBoards", ""},
    {"Boards/ListDetectedBoards", "", "viewer", "ListDetectedBoards", ""},
    {"Boards/AddDetectedBoard", "name: 'B'", "configurator", "AddDetectedBoard", "B"},
    {"Configuration/Export", "", "viewer", "Export", ""},
    {"Configuration/Import", "", "admin", "Import", ""},
    {"Configuration/ListHistory", "object: 'O'", "viewer", "ListHistory", "O"},
    {"Configuration/DiffConfiguration", "object: 'O'", "viewer", "DiffConfiguration", "O"},
    {"Configuration/RollBack", "object: 'O'", "configurator", "RollBack of an object", "O"},
    {"Configuration/RollBack", "generation: 1", "admin", "RollBack", ""},
    {"Host/GetHost", "", "viewer", "GetHost", ""},
    {"Host/GetCodeName", "code: 17", "viewer", "GetCodeName", "0x00000011"},
    {"Host/ListModules", "", "viewer", "ListModules", ""},
    {"Host/Diagnose", "", "viewer", "Diagnose", ""},
    {"Host/StartService", "", "admin", "StartService", ""},
    {"Host/StopService", "", "admin", "StopService", ""},
    {"Host/RestartService", "", "admin", "RestartService", ""},
    {"Objects/ListObjects", "", "viewer", "ListObjects", ""},
    {"Objects/ReadObject", "name: 'O'", "viewer", "ReadObject", "O"},
    {"Objects/DescribeObject", "name: 'O'", "viewer", "DescribeObject", "O"},
    {"Objects/ChangeObject", "name: 'O'", "configurator", "ChangeObject", "O"},
    {"Objects/CreateBoard", "product: 'P'", "configurator", "CreateBoard", "P"},
    {"Objects/DeleteBoard", "name: 'O'", "configurator", "DeleteBoard", "O"},
    {"Operations/StartBoard", "board: 'B'", "operator", "StartBoard", "B"},
    {"Operations/StopBoard", "board: 'B'", "operator", "StopBoard", "B"},
    {"Operations/TestBoard", "board: 'B'", "operator", "TestBoard", "B"},
    {"Operations/GetOperation", "id: '1-1'", "viewer", "GetOperation", "1-1"},
    {"Operations/ListOperations", "board: 'B'", "viewer", "ListOperations", "B"},
    {"Operations/WaitOperation", "id: '1-1'", "viewer", "WaitOperation", "1-1"},
    {"Operations/FollowOperations", "ids: '1-1' ids: '1-2'", "viewer", "FollowOperations",
     "1-1 and 1 more"},
    {"Operations/CancelWait", "id: '1-1'", "viewer", "CancelWait", "1-1"},
    {"Sessions/Attach", "", "viewer", "Attach", ""},
    {"Sessions/Open", "name: 'O'", "viewer", "Open", "O"},
    {"Sessions/Open", "name: 'O' write: true", "configurator", "Open for writing", "O"},
    {"Sessions/Open", "name: 'O' provider: true", "admin", "Open as provider", "O"},
    {"Sessions/Open", "name: 'O' database: true", "admin", "Open as provider", "O"},
    {"Sessions/Close", "handle: 7", "viewer", "Close", "handle 7"},
    {"Sessions/GetKeyword", "handle: 7", "viewer", "GetKeyword", "handle 7"},
    {"Sessions/SetKeyword", "handle: 7", "configurator", "SetKeyword", "handle 7"},
    {"Sessions/RemoveKeyword", "handle: 7", "admin", "RemoveKeyword", "handle 7"},
    {"Sessions/GetQualifier", "handle: 7", "viewer", "GetQualifier", "handle 7"},
    {"Sessions/SetQualifier", "handle: 7", "admin", "SetQualifier", "handle 7"},
    {"Sessions/RemoveQualifier", "handle: 7", "admin", "RemoveQualifier", "handle 7"},
    {"Sessions/ListEntries", "handle: 7", "viewer", "ListEntries", "handle 7"},
    {"Sessions/GetProviderMode", "handle: 7", "viewer", "GetProviderMode", "handle 7"},
    {"Sessions/SetProviderMode", "handle: 7", "admin", "SetProviderMode", "handle 7"},
    {"Sessions/RegisterAlerts", "", "viewer", "RegisterAlerts", ""},
    {"Sessions/UnregisterAlerts", "", "viewer", "UnregisterAlerts", ""},
};

// In the order in which each holds the ones before it.
constexpr const char* kRoles[] = {"none", "viewer", "operator", "configurator", "admin"};

const char* roleBelow(const std::string& role) {
    for (std::size_t i = 1; i < std::size(kRoles); ++i)
        if (role == kRoles[i]) return kRoles[i - 1];
    ADD_FAILURE() << "no role: " << role;
    return kRoles[0];
}

const pb::ServiceDescriptor* serviceOf(const std::string& name) {
    return pb::DescriptorPool::generated_pool()->FindServiceByName("oam.v1." + name);
}

std::string bytesOf(const Row& row) {
    const std::string name = row.method;
    const std::size_t slash = name.find('/');
    const auto* const service = serviceOf(name.substr(0, slash));
    const auto* const method = service->FindMethodByName(name.substr(slash + 1));
    const std::unique_ptr<pb::Message> message(
        pb::MessageFactory::generated_factory()->GetPrototype(method->input_type())->New());
    EXPECT_TRUE(pb::TextFormat::ParseFromString(row.request, message.get())) << row.request;
    return message->SerializeAsString();
}

class DaemonDenials : public DaemonTest {
  protected:
    // Everyone has this role from now on.
    void Rule(Client& client, const std::string& role) {
        home.Write("oam/roles.conf",
                   role == "none" ? "certificate of.nobody viewer\n" : "everyone " + role + "\n");
        daemon->Signal(SIGHUP);
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        std::string now;
        while (now != role) {
            ASSERT_LT(std::chrono::steady_clock::now(), limit);
            v1::HostInfo info;
            const auto status =
                Call(*client.host, &v1::Host::Stub::GetHost, v1::GetHostRequest(), &info);
            now = status.ok() ? info.role() : "none";
        }
    }
};

TEST_F(DaemonDenials, AreLoggedWithRoleVerbAndObject) {
    Start();
    RawClient raw(home);
    Client client(home);
    v1::HostInfo self;
    ASSERT_TRUE(Call(*client.host, &v1::Host::Stub::GetHost, v1::GetHostRequest(), &self).ok());
    std::size_t told = 0;
    for (const char* role : {"none", "viewer", "operator", "configurator"}) {
        Rule(client, role);
        for (const Row& row : kRows) {
            if (std::string(roleBelow(row.role)) != role) continue;
            SCOPED_TRACE(row.method + std::string(" { ") + row.request + " }");
            const auto status = raw.Ask(std::string("/oam.v1.") + row.method, bytesOf(row));
            EXPECT_EQ(status.error_code(), grpc::StatusCode::PERMISSION_DENIED);
            const v1::Refusal refusal = RefusalIn(status);
            EXPECT_EQ(refusal.party(), v1::Refusal::PARTY_DAEMON);
            EXPECT_THAT(refusal.rule(), ::testing::HasSubstr(std::string("needs the role ") +
                                                             row.role + ", and theirs is " + role));
            std::string line = "denied: " + self.user() + " (" + role + ") may not " + row.verb;
            if (*row.object != '\0') line += " of \"" + std::string(row.object) + '"';
            daemon->AwaitError(line + '\n');
            ++told;
        }
    }
    EXPECT_EQ(told, std::size(kRows));
}

TEST_F(DaemonDenials, AreLookedAtForEveryVerbThereIs) {
    (void)v1::HostInfo::descriptor();
    std::set<std::string> known;
    for (const Row& row : kRows) known.insert(row.method);
    for (const char* name :
         {"Alerts", "Boards", "Configuration", "Host", "Objects", "Operations", "Sessions"}) {
        const auto* const service = serviceOf(name);
        ASSERT_NE(service, nullptr) << name;
        for (int i = 0; i < service->method_count(); ++i)
            EXPECT_TRUE(known.contains(std::string(name) + '/' + service->method(i)->name()))
                << service->method(i)->full_name();
    }
}

}  // namespace
}  // namespace oam::test
