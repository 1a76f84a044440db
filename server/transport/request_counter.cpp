#include "transport/request_counter.h"

#include <grpcpp/grpcpp.h>

#include <chrono>
#include <string>

namespace oam::server {
namespace {

using grpc::experimental::InterceptionHookPoints;
using grpc::experimental::InterceptorBatchMethods;

class CountedCall : public grpc::experimental::Interceptor {
  public:
    CountedCall(RequestCounts& counts, const char* method) : counts_(counts), method_(method) {
        counts_.Begin(method_);
    }
    // A call whose client went away before its answer has no other result.
    ~CountedCall() override {
        const std::chrono::duration<double> lasted = std::chrono::steady_clock::now() - begun_;
        counts_.End(method_, result_, lasted.count());
    }

    void Intercept(InterceptorBatchMethods* methods) override {
        if (methods->QueryInterceptionHookPoint(InterceptionHookPoints::PRE_SEND_STATUS))
            result_ = methods->GetSendStatus().error_code();
        methods->Proceed();
    }

  private:
    RequestCounts& counts_;
    const std::string method_;
    const std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
    int result_ = grpc::StatusCode::CANCELLED;
};

class RequestCounter : public grpc::experimental::ServerInterceptorFactoryInterface {
  public:
    explicit RequestCounter(RequestCounts& counts) : counts_(counts) {}

    grpc::experimental::Interceptor* CreateServerInterceptor(
        grpc::experimental::ServerRpcInfo* call) override {
        return new CountedCall(counts_, call->method());
    }

  private:
    RequestCounts& counts_;
};

}  // namespace

std::unique_ptr<grpc::experimental::ServerInterceptorFactoryInterface> NewRequestCounter(
    RequestCounts& counts) {
    return std::make_unique<RequestCounter>(counts);
}

}  // namespace oam::server
