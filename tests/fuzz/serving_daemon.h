// The daemon as it serves a host with the simulated chassis, every board of it configured, in a
// thread of this process: so that a fuzzer sees which of its code an input reaches. Made once,
// ended in good order when the process ends.
#pragma once

#include <grpcpp/generic/generic_stub.h>
#include <grpcpp/grpcpp.h>
#include <pthread.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "oam/v1/sessions.grpc.pb.h"
#include "temporary_installation.h"

namespace oam::fuzz {

class ServingDaemon {
  public:
    // The one of this process.
    static ServingDaemon& Get();

    // "/oam.v1.Boards/GetBoard". Of a stream's answers none is waited for.
    grpc::Status Ask(const std::string& method, const std::string& bytes,
                     std::chrono::milliseconds limit, std::string* answer = nullptr);

    // Of a session that is open as long as the daemon.
    const std::string& Session() const { return session_; }

  private:
    ServingDaemon();
    ~ServingDaemon();

    void Connect();
    void Attach();

    TemporaryInstallation home_;
    std::thread thread_;
    int status_ = -1;
    std::shared_ptr<grpc::Channel> channel_;
    std::unique_ptr<grpc::GenericStub> stub_;
    grpc::ClientContext attached_;
    std::unique_ptr<grpc::ClientReader<v1::AttachEvent>> events_;
    std::string session_;
};

}  // namespace oam::fuzz
