// The daemon of the field's interface with its simulated chassis, started here on the loopback for
// as long as the benchmarks run, and asked for one resource over a session.

#include <SaHpi.h>
#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include "hpi_peer.h"
#include "site.h"
#include "stopwatch.h"

extern char** environ;

namespace oam::bench {

namespace {

// One that is free now.
int freePort() {
    const int listening = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    int port = 0;
    if (bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        getsockname(listening, reinterpret_cast<sockaddr*>(&address), &size) == 0) {
        port = ntohs(address.sin_port);
    }
    close(listening);
    return port;
}

class HpiPeer {
  public:
    HpiPeer() {
        const std::string port = std::to_string(freePort());
        const std::string conf = (scratchDirectory() / "openhpi.conf").string();
        std::ofstream(conf) << "handler libsimulator {\n"
                               "    entity_root = \"{SYSTEM_CHASSIS,1}\"\n"
                               "    name = \"simulator\"\n"
                               "}\n";
        chmodPrivate(conf);
        const std::string map = (scratchDirectory() / "uid_map").string();
        const std::string pidFile = (scratchDirectory() / "openhpid.pid").string();
        setenv("OPENHPI_UID_MAP", map.c_str(), 1);
        setenv("OPENHPI_DAEMON_HOST", "127.0.0.1", 1);
        setenv("OPENHPI_DAEMON_PORT", port.c_str(), 1);
        const char* words[] = {OAM_BENCH_HPI_DAEMON,
                               "-n",
                               "-c",
                               conf.c_str(),
                               "-b",
                               "127.0.0.1",
                               "-p",
                               port.c_str(),
                               "-f",
                               pidFile.c_str(),
                               nullptr};
        if (posix_spawn(&daemon_, OAM_BENCH_HPI_DAEMON, nullptr, nullptr, const_cast<char**>(words),
                        environ) != 0) {
            daemon_ = -1;
            return;
        }
        for (int i = 0; i < 100 && !isConnected_; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            isConnected_ = Connect();
        }
    }
    ~HpiPeer() {
        if (daemon_ <= 0) return;
        kill(daemon_, SIGKILL);
        waitpid(daemon_, nullptr, 0);
    }
    HpiPeer(const HpiPeer&) = delete;
    HpiPeer& operator=(const HpiPeer&) = delete;

    bool IsConnected() const { return isConnected_; }
    bool ReadResource() {
        SaHpiRptEntryT entry;
        return saHpiRptEntryGetByResourceId(session_, resource_, &entry) == SA_OK;
    }

  private:
    static void chmodPrivate(const std::string& file) {
        std::filesystem::permissions(
            file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    }
    bool Connect() {
        if (saHpiSessionOpen(SAHPI_UNSPECIFIED_DOMAIN_ID, &session_, nullptr) != SA_OK)
            return false;
        SaHpiEntryIdT next;
        SaHpiRptEntryT entry;
        if (saHpiDiscover(session_) == SA_OK &&
            saHpiRptEntryGet(session_, SAHPI_FIRST_ENTRY, &next, &entry) == SA_OK) {
            resource_ = entry.ResourceId;
            return true;
        }
        (void)saHpiSessionClose(session_);
        return false;
    }

    pid_t daemon_ = -1;
    bool isConnected_ = false;
    SaHpiSessionIdT session_ = 0;
    SaHpiResourceIdT resource_ = 0;
};

}  // namespace

Run hpiPeer() {
    return [](benchmark::State& state) {
        static HpiPeer peer;
        BENCH_CHECK(state, peer.IsConnected());
        bool good = true;
        for (auto _ : state) good = peer.ReadResource() && good;
        BENCH_CHECK(state, good);
    };
}

}  // namespace oam::bench
