// One real server of the fleet's engine, run with a configuration as it ships.
//
// Its directory holds the sample configuration byte for byte and a site.conf of the test's own:
// ports and paths, nothing else, come from the test. Started, killed and frozen by its id.
#pragma once

#include <signal.h>

#include <memory>
#include <string>

#include "lasting_child.h"
#include "site.h"

namespace oam::test {

class NatsServer {
  public:
    // `sample` is the shipped configuration's name, `settings` the text of site.conf.
    NatsServer(const Site& site, const std::string& name, const std::string& sample,
               const std::string& settings);

    const std::string& Directory() const { return directory_; }
    void Start();
    bool IsRunning() const { return process_ != nullptr; }
    pid_t Pid() const { return process_->Pid(); }
    // In good order.
    void Stop();
    void Kill();
    void Freeze() const { process_->Signal(SIGSTOP); }
    void Continue() const { process_->Signal(SIGCONT); }
    // Reads its files again.
    void Reload() const { process_->Signal(SIGHUP); }

    // Waits until this start has said it. What it has said since, all of it.
    void AwaitLog(const std::string& text) const;
    std::string Log() const;

  private:
    std::string sample_;
    std::string directory_;
    std::string log_;
    int starts_ = 0;
    std::unique_ptr<ChildProcess> process_;
};

// A line of a site.conf.
std::string Setting(const std::string& name, const std::string& value);

}  // namespace oam::test
