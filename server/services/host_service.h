#pragma once

#include "oam/v1/host.grpc.pb.h"
#include "services/core.h"

namespace oam::server {

class HostService : public v1::Host::CallbackService {
  public:
    explicit HostService(Core& core) : core_(core) {}

    grpc::ServerUnaryReactor* GetHost(grpc::CallbackServerContext* context,
                                      const v1::GetHostRequest* request,
                                      v1::HostInfo* response) override;
    grpc::ServerUnaryReactor* GetCodeName(grpc::CallbackServerContext* context,
                                          const v1::GetCodeNameRequest* request,
                                          v1::GetCodeNameResponse* response) override;
    grpc::ServerUnaryReactor* ListModules(grpc::CallbackServerContext* context,
                                          const v1::ListModulesRequest* request,
                                          v1::ListModulesResponse* response) override;
    grpc::ServerUnaryReactor* Diagnose(grpc::CallbackServerContext* context,
                                       const v1::DiagnoseRequest* request,
                                       v1::DiagnoseResponse* response) override;
    grpc::ServerUnaryReactor* StartService(grpc::CallbackServerContext* context,
                                           const v1::StartServiceRequest* request,
                                           v1::HostInfo* response) override;
    grpc::ServerUnaryReactor* StopService(grpc::CallbackServerContext* context,
                                          const v1::StopServiceRequest* request,
                                          v1::HostInfo* response) override;
    grpc::ServerUnaryReactor* RestartService(grpc::CallbackServerContext* context,
                                             const v1::RestartServiceRequest* request,
                                             v1::HostInfo* response) override;

  private:
    grpc::ServerUnaryReactor* Alone(grpc::CallbackServerContext* context, const Verb& verb,
                                    std::function<void()> work, v1::HostInfo* response);
    void Tell(const Call& call, v1::HostInfo* told) const;

    Core& core_;
};

}  // namespace oam::server
