#pragma once

#include "oam/v1/boards.grpc.pb.h"
#include "services/core.h"

namespace oam::server {

class BoardsService : public v1::Boards::CallbackService {
  public:
    explicit BoardsService(Core& core) : core_(core) {}

    grpc::ServerUnaryReactor* ListBoards(grpc::CallbackServerContext* context,
                                         const v1::ListBoardsRequest* request,
                                         v1::ListBoardsResponse* response) override;
    grpc::ServerUnaryReactor* GetBoard(grpc::CallbackServerContext* context,
                                       const v1::GetBoardRequest* request,
                                       v1::Board* response) override;
    grpc::ServerUnaryReactor* LookUpBoard(grpc::CallbackServerContext* context,
                                          const v1::LookUpBoardRequest* request,
                                          v1::LookUpBoardResponse* response) override;
    grpc::ServerUnaryReactor* GetBoardStatus(grpc::CallbackServerContext* context,
                                             const v1::GetBoardStatusRequest* request,
                                             v1::GetBoardStatusResponse* response) override;
    grpc::ServerUnaryReactor* SetShelfSlot(grpc::CallbackServerContext* context,
                                           const v1::SetShelfSlotRequest* request,
                                           v1::BoardChangeResponse* response) override;
    grpc::ServerUnaryReactor* ResetMacAddresses(grpc::CallbackServerContext* context,
                                                const v1::ResetMacAddressesRequest* request,
                                                v1::BoardChangeResponse* response) override;
    grpc::ServerUnaryReactor* SetMacAddresses(grpc::CallbackServerContext* context,
                                              const v1::SetMacAddressesRequest* request,
                                              v1::BoardChangeResponse* response) override;
    grpc::ServerUnaryReactor* SendBuffer(grpc::CallbackServerContext* context,
                                         const v1::SendBufferRequest* request,
                                         v1::SendBufferResponse* response) override;
    grpc::ServerUnaryReactor* DetectBoards(grpc::CallbackServerContext* context,
                                           const v1::DetectBoardsRequest* request,
                                           v1::DetectBoardsResponse* response) override;
    grpc::ServerUnaryReactor* ListDetectedBoards(grpc::CallbackServerContext* context,
                                                 const v1::ListDetectedBoardsRequest* request,
                                                 v1::DetectBoardsResponse* response) override;
    grpc::ServerUnaryReactor* AddDetectedBoard(grpc::CallbackServerContext* context,
                                               const v1::AddDetectedBoardRequest* request,
                                               v1::AddDetectedBoardResponse* response) override;

  private:
    Core& core_;
};

}  // namespace oam::server
