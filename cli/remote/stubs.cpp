#include "remote/stubs.h"

#include "wire/daemon_channel.h"

namespace oam {
namespace {

ExitStatus statusOf(grpc::StatusCode code) {
    switch (code) {
        case grpc::StatusCode::NOT_FOUND:
            return kNotFound;
        case grpc::StatusCode::PERMISSION_DENIED:
            return kNotPermitted;
        case grpc::StatusCode::RESOURCE_EXHAUSTED:
            return kBusy;
        case grpc::StatusCode::UNAVAILABLE:
        case grpc::StatusCode::DEADLINE_EXCEEDED:
            return kNoDaemon;
        default:
            return kFailed;
    }
}

}  // namespace

Failure FailureOf(const grpc::Status& status) {
    const auto refusal = wire::RefusalIn(status);
    if (!refusal)
        return Failure("the daemon does not answer: " + status.error_message(),
                       "`systemctl status oamd` tells how it is", statusOf(status.error_code()));
    const ExitStatus exit =
        refusal->code() ? StatusOf(refusal->code()) : statusOf(status.error_code());
    return {refusal->code(), exit, refusal->rule(), refusal->remedy()};
}

}  // namespace oam
