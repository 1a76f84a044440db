// What the daemon sends to the journal, with the fields that one searches for: received at the
// journal's socket, which lies elsewhere for this daemon alone.
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "daemon_test.h"

namespace oam::test {
namespace {

using Fields = std::vector<std::string>;

// $1 is what the journal's directory shows, $2 the daemon.
constexpr const char* kElsewhere = R"(
mount -t tmpfs tmpfs /run && mkdir -p /run/systemd/journal && mount --bind "$1" /run/systemd/journal &&
export JOURNAL_STREAM=$(stat --dereference --format=%d:%i /dev/stderr) && exec "$2")";

class DaemonJournal : public DaemonTest {
  protected:
    void SetUp() override {
        std::vector<std::string> apart{"/usr/bin/unshare", "--mount"};
        if (geteuid() != 0) apart.insert(apart.end(), {"--user", "--map-root-user"});
        auto tried = apart;
        tried.insert(tried.end(), {"/bin/sh", "-c", "mount -t tmpfs tmpfs /run"});
        if (access(apart[0].c_str(), X_OK) != 0 || ChildProcess(tried, "/").Finish().status != 0)
            GTEST_SKIP() << "no mount namespace can be made here";
        Listen();
        home.Write("oam/cfg/sim.chassis", kMixedChassis);
        std::filesystem::copy_file(OAM_SIM_PLUGIN, home.Path("lib/sim.bpi"));
        auto command = apart;
        command.insert(command.end(),
                       {"/bin/sh", "-c", kElsewhere, "sh", home.Path("journal"), OAM_DAEMON});
        daemon = std::make_unique<ChildProcess>(command, home.Root());
        (void)Await({"PRIORITY=5"}, "serves ");
        Tool({"board", "add", "--all"});
    }

    void TearDown() override {
        DaemonTest::TearDown();
        if (socket_ >= 0) close(socket_);
    }

    // The next line that has these fields, and this in its message; every other one is passed over.
    Fields Await(const Fields& wanted, const std::string& inMessage = "") {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        std::string passed;
        while (std::chrono::steady_clock::now() < limit) {
            pollfd ready{socket_, POLLIN, 0};
            if (poll(&ready, 1, 1000) != 1) continue;
            std::string bytes(65536, '\0');
            const ssize_t length = recv(socket_, bytes.data(), bytes.size(), 0);
            bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
            const Fields fields = FieldsOf(bytes);
            const auto isThere = [&](const std::string& field) {
                return std::find(fields.begin(), fields.end(), field) != fields.end();
            };
            if (std::all_of(wanted.begin(), wanted.end(), isThere) &&
                fields.at(0).find(inMessage) != std::string::npos)
                return fields;
            passed += bytes + '\n';
        }
        ADD_FAILURE() << "never said: " << ::testing::PrintToString(wanted) << "\nbut\n" << passed;
        return {};
    }

  private:
    void Listen() {
        home.MakeDirectory("journal");
        socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const std::string path = home.Path("journal/socket");
        ASSERT_LT(path.size(), sizeof address.sun_path);
        path.copy(address.sun_path, path.size());
        ASSERT_EQ(bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }

    // None of them has a line end in its value here.
    static Fields FieldsOf(const std::string& bytes) {
        Fields fields;
        std::istringstream lines(bytes);
        for (std::string line; std::getline(lines, line);) fields.push_back(line);
        return fields;
    }

    int socket_ = -1;
};

TEST_F(DaemonJournal, HasWhoAskedForWhichOperationAndWhatCameOfIt) {
    Client client(home);
    v1::HostInfo self;
    ASSERT_TRUE(Call(*client.host, &v1::Host::Stub::GetHost, v1::GetHostRequest(), &self).ok());
    const std::string user = "OAM_USER=" + self.user();

    const std::string good = "OAM_OP=" + StartBoard(client, "Good");
    (void)Await({good, user, "OAM_VERB=StartBoard", "OAM_BOARD=Good"}, "asked for operation");
    (void)Await({good, user, "OAM_BOARD=Good", "OAM_SEVERITY=0"}, "Board is started");

    const std::string bogus = "OAM_OP=" + StartBoard(client, "Bogus");
    (void)Await({bogus, user, "OAM_CODE=0x40000004"}, "refused");

    ASSERT_TRUE(
        Call(*client.host, &v1::Host::Stub::StopService, v1::StopServiceRequest(), &self).ok());
    (void)Await({user, "OAM_VERB=StopService"});
}

TEST_F(DaemonJournal, HasWhoChangedWhat) {
    Client client(home);
    v1::ChangeObjectRequest change;
    change.set_name("Good");
    change.add_changes()->set_keyword("Number");
    change.mutable_changes(0)->set_value("40");
    v1::ChangeObjectResponse changed;
    ASSERT_TRUE(Call(*client.objects, &v1::Objects::Stub::ChangeObject, change, &changed).ok());
    (void)Await({"OAM_VERB=change", "OAM_OBJECT=Good",
                 "OAM_GENERATION=" + std::to_string(changed.generation())},
                "generation");
    v1::SetShelfSlotRequest place;
    place.set_board("Good");
    v1::BoardChangeResponse placed;
    ASSERT_TRUE(Call(*client.boards, &v1::Boards::Stub::SetShelfSlot, place, &placed).ok());
    (void)Await({"OAM_VERB=SetShelfSlot", "OAM_OBJECT=Good"});
}

}  // namespace
}  // namespace oam::test
