#include "host.h"

#include <grpcpp/create_channel_posix.h>
#include <grpcpp/grpcpp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "await.h"
#include "support/http.h"
#include "wire/local_socket.h"

namespace oam::test {
namespace {

namespace files = std::filesystem;

constexpr unsigned kRaised = 0x7001;  // no code of the service's own

template <class Stub, class Request, class Response>
bool ask(Stub& stub, grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&, Response*),
         const Request& request, Response* response) {
    grpc::ClientContext context;
    context.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(60));
    return (stub.*method)(&context, request, response).ok();
}

std::string chassis(int boards) {
    std::string text;
    for (int i = 0; i < boards; ++i)
        text += "board: Sim " + std::to_string(i) +
                "\nproduct: SIM-E1\nbus: " + std::to_string(1 + i / 20) +
                "\nslot: " + std::to_string(1 + i % 20) + "\nstart-time: 1ms\n\n";
    return text;
}

std::string ownRule() {
    const passwd* const self = getpwuid(geteuid());
    return self == nullptr ? "" : std::string("user ") + self->pw_name + " admin\n";
}

std::vector<std::string> environment(const std::string& directory) {
    return {"KOR_DIR=" + directory, "KOR_SHM_DIR=" + directory + "/shm"};
}

std::unique_ptr<ChildProcess> startDaemon(const std::string& directory,
                                          const std::vector<std::string>& options = {}) {
    std::vector<std::string> command{OAM_DAEMON};
    command.insert(command.end(), options.begin(), options.end());
    auto daemon = StartLasting(environment(directory), command, directory, directory + "/oamd.log");
    EXPECT_TRUE(Await([&] {
        const auto descriptor = wire::Connect(wire::SocketPath(directory));
        if (descriptor) close(*descriptor);
        return descriptor.has_value();
    })) << "no daemon in "
        << directory;
    return daemon;
}

}  // namespace

HostModel::HostModel(const Site& site, int boards, const std::string& roles)
    : directory_(site.Directory("model")) {
    for (const char* each : {"oam/cfg", "oam/log", "lib", "shm"})
        site.Directory(std::string("model/") + each);
    site.Write("model/oam/cfg/sim.chassis", chassis(boards));
    site.Write("model/oam/roles.conf", "user root admin\n" + ownRule() + roles);
    files::copy_file(OAM_SIM_PLUGIN, directory_ + "/lib/sim.bpi");
    const auto daemon = startDaemon(directory_);
    std::vector<std::string> add{"/usr/bin/env"};
    for (const std::string& setting : environment(directory_)) add.push_back(setting);
    add.insert(add.end(), {OAM_TOOL, "board", "add", "--all"});
    const Finished added = ChildProcess(add, directory_).Finish();
    EXPECT_EQ(added.status, 0) << added.err;
    daemon->Signal(SIGTERM);
    EXPECT_EQ(daemon->Finish().status, 0);
}

Host::Host(Site& site, const HostModel& model, const std::string& name)
    : name_(name), papers_(site.PapersOf(Certificate())), directory_(site.Directory(name)) {
    for (const char* each : {"oam/log", "lib", "shm"}) site.Directory(name + "/" + each);
    files::copy(model.Directory() + "/oam/cfg", directory_ + "/oam/cfg",
                files::copy_options::recursive);
    files::copy_file(model.Directory() + "/oam/roles.conf", directory_ + "/oam/roles.conf");
    files::create_hard_link(model.Directory() + "/lib/sim.bpi", directory_ + "/lib/sim.bpi");
}

void Host::StartDaemon() {
    daemon_ = startDaemon(directory_, {"--alerts-kept", std::to_string(alertsKept_), "--metrics",
                                       daemonMetrics_.Address()});
    Connect();
}

// Looks at the boards when something happens; the slow round beside it is not what is tested.
void Host::StartAgent() {
    agent_ =
        StartLasting(environment(directory_),
                     {OAM_FLEET_AGENT, "--dir", directory_, "--name", name_, "--server", hub_,
                      "--domain", "hub", "--certificate", papers_.certificate, "--key", papers_.key,
                      "--authorities", papers_.authorities, "--metrics", agentMetrics_.Address()},
                     directory_, directory_ + "/fleetd.log");
}

void Host::Connect() {
    const auto descriptor = wire::Connect(wire::SocketPath(directory_));
    ASSERT_TRUE(descriptor) << name_;
    const auto channel = grpc::CreateInsecureChannelFromFd("oamd", *descriptor);
    alerts_ = v1::Alerts::NewStub(channel);
    service_ = v1::Host::NewStub(channel);
}

bool Host::Raise(const std::string& text) {
    v1::NotifyAlertRequest request;
    request.set_code(kRaised);
    request.set_source("rig");
    request.set_text(text);
    v1::NotifyAlertResponse taken;
    return ask(*alerts_, &v1::Alerts::Stub::NotifyAlert, request, &taken);
}

std::vector<v1::Alert> Host::Ring() {
    std::vector<v1::Alert> ring;
    v1::ListAlertsRequest request;
    request.set_limit(1000);
    v1::ListAlertsResponse page;
    do {
        page.Clear();
        EXPECT_TRUE(ask(*alerts_, &v1::Alerts::Stub::ListAlerts, request, &page)) << name_;
        ring.insert(ring.end(), page.alerts().begin(), page.alerts().end());
        request.set_after(page.next_after());
    } while (!page.alerts().empty());
    return ring;
}

std::uint64_t Host::Newest() {
    v1::HostInfo info;
    EXPECT_TRUE(ask(*service_, &v1::Host::Stub::GetHost, v1::GetHostRequest(), &info)) << name_;
    return info.newest_alert();
}

std::string Host::AgentLog() const {
    std::ostringstream text;
    text << std::ifstream(directory_ + "/fleetd.log").rdbuf();
    return text.str();
}

std::string Host::DaemonMetrics() const {
    return BodyOf(HttpGet(daemonMetrics_.Address(), "/metrics"));
}

std::string Host::AgentMetrics() const {
    return BodyOf(HttpGet(agentMetrics_.Address(), "/metrics"));
}

void Host::EndDaemon() {
    daemon_->Signal(SIGTERM);
    EXPECT_EQ(daemon_->Finish().status, 0) << name_;
    daemon_.reset();
}

void Host::Kill(std::unique_ptr<ChildProcess>* process) {
    (*process)->Signal(SIGKILL);
    (void)(*process)->Finish();
    process->reset();
}

}  // namespace oam::test
