#include "nats_server.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "await.h"

namespace oam::test {

std::string Setting(const std::string& name, const std::string& value) {
    return name + ": \"" + value + "\"\n";
}

NatsServer::NatsServer(const Site& site, const std::string& name, const std::string& sample,
                       const std::string& settings)
    : sample_(sample), directory_(site.Directory(name)) {
    std::filesystem::copy_file(std::string(OAM_FLEET_SAMPLES) + "/" + sample,
                               directory_ + "/" + sample);
    site.Write(name + "/site.conf", settings);
}

void NatsServer::Start() {
    log_ = directory_ + "/log." + std::to_string(++starts_);
    process_ =
        StartLasting({}, {OAM_NATS_SERVER, "-c", directory_ + "/" + sample_}, directory_, log_);
    AwaitLog("Server is ready");
}

void NatsServer::Stop() {
    process_->Signal(SIGTERM);
    (void)process_->Finish();
    process_.reset();
}

void NatsServer::Kill() {
    process_->Signal(SIGKILL);
    (void)process_->Finish();
    process_.reset();
}

void NatsServer::AwaitLog(const std::string& text) const {
    EXPECT_TRUE(Await([&] { return Log().find(text) != std::string::npos; }))
        << "never said: " << text << '\n'
        << Log();
}

std::string NatsServer::Log() const {
    std::ostringstream text;
    text << std::ifstream(log_).rdbuf();
    return text.str();
}

}  // namespace oam::test
