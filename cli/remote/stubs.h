// The daemon's stubs over one connection, and how an answer becomes a value or a Failure.
#pragma once

#include <grpcpp/grpcpp.h>

#include "failure.h"
#include "oam/v1/alerts.grpc.pb.h"
#include "oam/v1/boards.grpc.pb.h"
#include "oam/v1/configuration.grpc.pb.h"
#include "oam/v1/host.grpc.pb.h"
#include "oam/v1/objects.grpc.pb.h"
#include "oam/v1/operations.grpc.pb.h"

namespace oam {

// The refusal that a status tells of, word for word.
Failure FailureOf(const grpc::Status& status);

struct Stubs {
    explicit Stubs(const std::shared_ptr<grpc::Channel>& channel)
        : objects(v1::Objects::NewStub(channel)),
          boards(v1::Boards::NewStub(channel)),
          operations(v1::Operations::NewStub(channel)),
          configuration(v1::Configuration::NewStub(channel)),
          alerts(v1::Alerts::NewStub(channel)),
          host(v1::Host::NewStub(channel)) {}

    std::unique_ptr<v1::Objects::Stub> objects;
    std::unique_ptr<v1::Boards::Stub> boards;
    std::unique_ptr<v1::Operations::Stub> operations;
    std::unique_ptr<v1::Configuration::Stub> configuration;
    std::unique_ptr<v1::Alerts::Stub> alerts;
    std::unique_ptr<v1::Host::Stub> host;
};

// Ask<Response>(stub, &Stub::Method, request): the answer, or a Failure.
template <class Response, class Stub, class Request>
Response Ask(Stub& stub,
             grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&, Response*),
             const Request& request) {
    grpc::ClientContext context;
    Response response;
    const grpc::Status status = (stub.*method)(&context, request, &response);
    if (!status.ok()) throw FailureOf(status);
    return response;
}

}  // namespace oam
