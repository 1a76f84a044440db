#include "wire/daemon_channel.h"

#include <grpcpp/create_channel_posix.h>

namespace oam::wire {

std::shared_ptr<grpc::Channel> ChannelOver(int descriptor) {
    return grpc::CreateInsecureChannelFromFd("oamd", descriptor);
}

std::optional<v1::Refusal> RefusalIn(const grpc::Status& status) {
    v1::Refusal refusal;
    if (status.error_details().empty() || !refusal.ParseFromString(status.error_details()))
        return std::nullopt;
    return refusal;
}

}  // namespace oam::wire
