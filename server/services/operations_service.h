#pragma once

#include "oam/v1/operations.grpc.pb.h"
#include "services/core.h"
#include "services/operation_waits.h"

namespace oam::server {

class OperationsService : public v1::Operations::CallbackService {
  public:
    explicit OperationsService(Core& core) : core_(core), waits_(core.operations) {}

    grpc::ServerUnaryReactor* StartBoard(grpc::CallbackServerContext* context,
                                         const v1::StartBoardRequest* request,
                                         v1::Operation* response) override;
    grpc::ServerUnaryReactor* StopBoard(grpc::CallbackServerContext* context,
                                        const v1::StopBoardRequest* request,
                                        v1::Operation* response) override;
    grpc::ServerUnaryReactor* TestBoard(grpc::CallbackServerContext* context,
                                        const v1::TestBoardRequest* request,
                                        v1::Operation* response) override;
    grpc::ServerUnaryReactor* GetOperation(grpc::CallbackServerContext* context,
                                           const v1::GetOperationRequest* request,
                                           v1::Operation* response) override;
    grpc::ServerUnaryReactor* ListOperations(grpc::CallbackServerContext* context,
                                             const v1::ListOperationsRequest* request,
                                             v1::ListOperationsResponse* response) override;
    grpc::ServerUnaryReactor* WaitOperation(grpc::CallbackServerContext* context,
                                            const v1::WaitOperationRequest* request,
                                            v1::Operation* response) override;
    grpc::ServerWriteReactor<v1::Operation>* FollowOperations(
        grpc::CallbackServerContext* context, const v1::FollowOperationsRequest* request) override;
    grpc::ServerUnaryReactor* CancelWait(grpc::CallbackServerContext* context,
                                         const v1::CancelWaitRequest* request,
                                         v1::CancelWaitResponse* response) override;

  private:
    grpc::ServerUnaryReactor* Request(grpc::CallbackServerContext* context, const Verb& verb,
                                      OperationKind kind, const std::string& board,
                                      std::function<unsigned(const std::string&)> request,
                                      v1::Operation* response);

    Core& core_;
    OperationWaits waits_;
};

}  // namespace oam::server
