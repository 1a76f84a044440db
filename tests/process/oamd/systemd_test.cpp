// The daemon below a service manager: what it tells at its notification socket, the watchdog, and
// the listening socket that it is handed.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "daemon_test.h"
#include "wire/local_socket.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// A variable of the environment for as long as this lives.
class Variable {
  public:
    Variable(const char* name, const std::string& value) : name_(name) {
        setenv(name, value.c_str(), 1);
    }
    ~Variable() { unsetenv(name_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    const char* name_;
};

int socketAt(const std::string& path, int type) {
    const int descriptor = socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    return descriptor;
}

// The service manager's end.
class Manager {
  public:
    explicit Manager(const Installation& home)
        : path_(home.Path("notify")), socket_(socketAt(path_, SOCK_DGRAM)) {}
    ~Manager() { close(socket_); }
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;

    const std::string& Path() const { return path_; }

    // The next message; empty when none came in time.
    std::string Next(std::chrono::milliseconds limit) const {
        pollfd event = {socket_, POLLIN, 0};
        if (poll(&event, 1, static_cast<int>(limit.count())) <= 0) return {};
        char block[1024];
        const ssize_t length = recv(socket_, block, sizeof block, 0);
        return {block, static_cast<size_t>(std::max<ssize_t>(length, 0))};
    }
    // All until one has the text, in one.
    std::string Until(const std::string& text) const {
        std::string all;
        while (all.find(text) == std::string::npos) {
            const std::string message = Next(std::chrono::seconds(60));
            if (message.empty()) {
                ADD_FAILURE() << "never told: " << text << "\ntold: " << all;
                break;
            }
            all += message + '\n';
        }
        return all;
    }

  private:
    const std::string path_;
    const int socket_;
};

class ManagedDaemon : public DaemonTest {
  protected:
    void Run(const std::string& command = "exec " OAM_DAEMON) {
        daemon = std::make_unique<ChildProcess>(
            std::vector<std::string>{"/bin/bash", "-c", command}, home.Root());
    }

    const Manager manager{home};
    const Variable notify{"NOTIFY_SOCKET", manager.Path()};
};

class WatchedDaemon : public ManagedDaemon {
  protected:
    void HoldDatabase() {
        home.Write("hold", "");
        reader = std::make_unique<ChildProcess>(
            std::vector<std::string>{OAM_TOOL, "get", "held.emc", "Word"}, home.Root());
        for (int i = 0; i < 3000 && !home.Exists("holding"); ++i) usleep(10'000);
        ASSERT_TRUE(home.Exists("holding"));
    }
    void SetUp() override {
        std::filesystem::copy_file(OAM_HELD_COMPONENT, home.Path("lib/held.emc"));
        Run();
        manager.Until("WATCHDOG=1");
    }

    const Variable limit{"WATCHDOG_USEC", "300000"};
    std::unique_ptr<ChildProcess> reader;
};

}  // namespace

TEST_F(ManagedDaemon, IsReadyOnceTheServiceHasStarted) {
    Run();
    const std::string told = manager.Until("READY=1");
    EXPECT_THAT(told, HasSubstr("STATUS=starting the service\n"));
    EXPECT_LT(told.find("STATUS=starting"), told.find("READY=1"));
    EXPECT_THAT(told, HasSubstr("STATUS=serving"));
    EXPECT_THAT(Tool({"host"}), HasSubstr("service runs"));
    daemon->Signal(SIGTERM);
    manager.Until("STOPPING=1");
    EXPECT_EQ(daemon->Finish().status, 0);
    daemon.reset();
}

TEST_F(ManagedDaemon, IsNeverReadyWhenTheServiceDoesNotStart) {
    home.Write("lib/bad.bpi", "no library");
    Run();
    EXPECT_EQ(daemon->Finish().status, 1);
    daemon.reset();
    const std::string told = manager.Until("STOPPING=1");
    EXPECT_THAT(told, HasSubstr("STATUS=failed: the service does not start"));
    EXPECT_THAT(told, Not(HasSubstr("READY=1")));
}

TEST_F(ManagedDaemon, TellsOfAReload) {
    Run();
    manager.Until("READY=1");
    daemon->Signal(SIGHUP);
    EXPECT_THAT(manager.Until("READY=1"), HasSubstr("RELOADING=1\nMONOTONIC_USEC="));
}

TEST_F(ManagedDaemon, FeedsNoWatchdogThatNobodyAskedFor) {
    Run();
    manager.Until("READY=1");
    EXPECT_EQ(manager.Next(std::chrono::milliseconds(500)), "");
}

TEST_F(WatchedDaemon, FeedsTheWatchdogAgainAndAgain) {
    for (int i = 0; i < 3; ++i) EXPECT_EQ(manager.Next(std::chrono::seconds(60)), "WATCHDOG=1");
}

TEST_F(WatchedDaemon, StarvesTheWatchdogWhileTheDatabaseHangs) {
    HoldDatabase();
    // One may be under way.
    (void)manager.Next(std::chrono::milliseconds(300));
    while (!manager.Next(std::chrono::milliseconds(0)).empty()) {
    }
    EXPECT_EQ(manager.Next(std::chrono::milliseconds(1000)), "");
    home.Remove("hold");
    EXPECT_EQ(manager.Next(std::chrono::seconds(60)), "WATCHDOG=1");
    EXPECT_EQ(reader->Finish().status, 0);
}

TEST_F(WatchedDaemon, EndsAlsoWhileTheDatabaseHangs) {
    HoldDatabase();
    daemon->Signal(SIGTERM);
    const Finished end = daemon->Finish();
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, HasSubstr("ending without it"));
    daemon.reset();
    (void)reader->Finish();
}

TEST_F(ManagedDaemon, ServesTheSocketThatItIsHanded) {
    const std::string path = wire::SocketPath(home.Root());
    const int listener = socketAt(path, SOCK_STREAM);
    ASSERT_EQ(listen(listener, 8), 0);
    fcntl(listener, F_SETFD, 0);
    // A client that comes before the daemon waits for it.
    ChildProcess early({OAM_TOOL, "host"}, home.Root());
    Run("exec 3<&" + std::to_string(listener) + "; LISTEN_PID=$$ LISTEN_FDS=1 exec " OAM_DAEMON);
    manager.Until("READY=1");
    close(listener);
    const Finished host = early.Finish();
    EXPECT_EQ(host.status, 0) << host.err;
    Tool({"host"});
    End();
    EXPECT_TRUE(std::filesystem::exists(path)) << "it is the service manager's";
}

TEST_F(ManagedDaemon, RefusesAHandedSocketThatNobodyCanConnectTo) {
    const int other = socketAt(home.Path("other"), SOCK_STREAM);
    fcntl(other, F_SETFD, 0);
    Run("exec 3<&" + std::to_string(other) + "; LISTEN_PID=$$ LISTEN_FDS=1 exec " OAM_DAEMON);
    const Finished end = daemon->Finish();
    close(other);
    daemon.reset();
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, HasSubstr("not one listening unix stream socket"));
}

}  // namespace oam::test
