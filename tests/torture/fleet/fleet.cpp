#include "fleet.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "await.h"

namespace oam::torture {
namespace {

std::string nameOf(std::size_t index) {
    char name[16];
    std::snprintf(name, sizeof name, "h%03zu", index + 1);
    return name;
}

}  // namespace

Fleet::Fleet(int hosts, int boards)
    : model_(site_, boards,
             std::string("certificate ") + kViewer + " viewer\ncertificate " + kOperator +
                 " operator\n") {
    site_.Allow(std::string("viewer ") + kViewer);
    site_.Allow(std::string("operator ") + kOperator);
    Add(hosts);
    hub_ = std::make_unique<test::Hub>(site_);
    for (const auto& host : hosts_) host->SetHub(hub_->Urls());
}

void Fleet::Add(int hosts) {
    for (int i = 0; i < hosts; ++i) {
        const std::string name = nameOf(hosts_.size());
        site_.Allow("host " + name + ".example.net " + name);
        hosts_.push_back(std::make_unique<test::Host>(site_, model_, name));
    }
}

void Fleet::Start() {
    hub_->Start();
    Init();
    StartHosts(0);
}

// Servers that have only just met may not know all of each other yet.
void Fleet::Init() {
    test::Finished made;
    EXPECT_TRUE(test::Await([&] {
        made = TryTool({"init"}, test::kKeeper);
        return made.status == 0;
    })) << made.out
        << made.err;
}

void Fleet::Grow(int hosts) {
    const std::size_t first = Size();
    Add(hosts);
    for (std::size_t i = first; i < Size(); ++i) At(i).SetHub(hub_->Urls());
    hub_->RenewRights();
    StartHosts(first);
}

void Fleet::StartHosts(std::size_t first) {
    for (std::size_t i = first; i < Size(); ++i) At(i).StartDaemon();
    for (std::size_t i = first; i < Size(); ++i) At(i).StartAgent();
    const test::Observer keeper = Keeper();
    EXPECT_TRUE(test::Await(
        [&] {
            const auto facts = keeper.Facts("KV_oam_boards");
            return facts && facts->messages >= Size();
        },
        std::chrono::seconds(300)))
        << "not every host has come: " << At(first).AgentLog();
}

std::string Fleet::Tool(const std::vector<std::string>& arguments, const std::string& as) {
    const test::Finished run = TryTool(arguments, as);
    EXPECT_EQ(run.status, 0) << ::testing::PrintToString(arguments) << '\n' << run.out << run.err;
    return run.out;
}

test::Finished Fleet::TryTool(const std::vector<std::string>& arguments, const std::string& as) {
    const test::Papers papers = site_.PapersOf(as);
    std::vector<std::string> command{OAM_FLEET_TOOL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    command.insert(command.end(),
                   {"--server", hub_->Urls(), "--domain", "hub", "--certificate",
                    papers.certificate, "--key", papers.key, "--authorities", papers.authorities});
    return test::ChildProcess(command, site_.Path("")).Finish();
}

}  // namespace oam::torture
