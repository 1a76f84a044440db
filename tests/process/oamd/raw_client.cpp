#include "raw_client.h"

#include <grpcpp/create_channel_posix.h>

#include <future>
#include <stdexcept>

#include "wire/local_socket.h"

namespace oam::test {
namespace {

std::shared_ptr<grpc::Channel> connect(const Installation& home) {
    const auto descriptor = wire::Connect(wire::SocketPath(home.Root()));
    if (!descriptor) throw std::runtime_error("no daemon serves " + home.Root());
    return grpc::CreateInsecureChannelFromFd("oamd", *descriptor);
}

}  // namespace

RawClient::RawClient(const Installation& home) : stub_(connect(home)) {}

grpc::Status RawClient::Ask(const std::string& method, const std::string& bytes,
                            std::chrono::milliseconds limit) {
    grpc::ClientContext context;
    context.set_deadline(std::chrono::system_clock::now() + limit);
    const grpc::Slice slice(bytes);
    const grpc::ByteBuffer request(&slice, 1);
    grpc::ByteBuffer answer;
    std::promise<grpc::Status> ended;
    stub_.UnaryCall(&context, method, {}, &request, &answer,
                    [&](grpc::Status status) { ended.set_value(std::move(status)); });
    return ended.get_future().get();
}

}  // namespace oam::test
