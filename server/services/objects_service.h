#pragma once

#include "oam/v1/objects.grpc.pb.h"
#include "services/core.h"

namespace oam::server {

class ObjectsService : public v1::Objects::CallbackService {
  public:
    explicit ObjectsService(Core& core) : core_(core) {}

    grpc::ServerUnaryReactor* ListObjects(grpc::CallbackServerContext* context,
                                          const v1::ListObjectsRequest* request,
                                          v1::ListObjectsResponse* response) override;
    grpc::ServerUnaryReactor* ReadObject(grpc::CallbackServerContext* context,
                                         const v1::ReadObjectRequest* request,
                                         v1::ReadObjectResponse* response) override;
    grpc::ServerUnaryReactor* DescribeObject(grpc::CallbackServerContext* context,
                                             const v1::DescribeObjectRequest* request,
                                             v1::DescribeObjectResponse* response) override;
    grpc::ServerUnaryReactor* ChangeObject(grpc::CallbackServerContext* context,
                                           const v1::ChangeObjectRequest* request,
                                           v1::ChangeObjectResponse* response) override;
    grpc::ServerUnaryReactor* CreateBoard(grpc::CallbackServerContext* context,
                                          const v1::CreateBoardRequest* request,
                                          v1::CreateBoardResponse* response) override;
    grpc::ServerUnaryReactor* DeleteBoard(grpc::CallbackServerContext* context,
                                          const v1::DeleteBoardRequest* request,
                                          v1::DeleteBoardResponse* response) override;

  private:
    Core& core_;
};

}  // namespace oam::server
