#pragma once

#include "oam/v1/configuration.grpc.pb.h"
#include "services/core.h"

namespace oam::server {

class ConfigurationService : public v1::Configuration::CallbackService {
  public:
    explicit ConfigurationService(Core& core) : core_(core) {}

    grpc::ServerWriteReactor<v1::ExportResponse>* Export(grpc::CallbackServerContext* context,
                                                         const v1::ExportRequest* request) override;
    grpc::ServerReadReactor<v1::ImportRequest>* Import(grpc::CallbackServerContext* context,
                                                       v1::ImportResponse* response) override;

    grpc::ServerUnaryReactor* ListHistory(grpc::CallbackServerContext* context,
                                          const v1::ListHistoryRequest* request,
                                          v1::ListHistoryResponse* response) override;
    grpc::ServerUnaryReactor* DiffConfiguration(grpc::CallbackServerContext* context,
                                                const v1::DiffConfigurationRequest* request,
                                                v1::DiffConfigurationResponse* response) override;
    grpc::ServerUnaryReactor* RollBack(grpc::CallbackServerContext* context,
                                       const v1::RollBackRequest* request,
                                       v1::RollBackResponse* response) override;

  private:
    Core& core_;
};

}  // namespace oam::server
