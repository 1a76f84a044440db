// What every gRPC server of today answers: whether it serves, and what.
#include <grpcpp/create_channel_posix.h>
#include <grpcpp/generic/generic_stub.h>
#include <grpcpp/grpcpp.h>

#include <future>

#include "daemon_test.h"
#include "wire/local_socket.h"

namespace oam::test {
namespace {

std::string textOf(const grpc::ByteBuffer& buffer) {
    std::vector<grpc::Slice> slices;
    std::string text;
    if (!buffer.Dump(&slices).ok()) return text;
    for (const grpc::Slice& slice : slices)
        text.append(reinterpret_cast<const char*>(slice.begin()), slice.size());
    return text;
}

grpc::ByteBuffer bufferOf(const std::string& bytes) {
    const grpc::Slice slice(bytes);
    return {&slice, 1};
}

class StandardServices : public DaemonTest {
  protected:
    void SetUp() override {
        Start();
        stub = std::make_unique<grpc::GenericStub>(grpc::CreateInsecureChannelFromFd(
            "oamd", wire::Connect(wire::SocketPath(home.Root())).value()));
    }
    void TearDown() override {
        stub.reset();
        DaemonTest::TearDown();
    }

    std::unique_ptr<grpc::GenericStub> stub;
};

TEST_F(StandardServices, TellThatItServes) {
    grpc::ClientContext context;
    const grpc::ByteBuffer request = bufferOf("");
    grpc::ByteBuffer answer;
    std::promise<grpc::Status> ended;
    stub->UnaryCall(&context, "/grpc.health.v1.Health/Check", {}, &request, &answer,
                    [&](grpc::Status status) { ended.set_value(std::move(status)); });
    const grpc::Status status = ended.get_future().get();
    ASSERT_TRUE(status.ok()) << status.error_message();
    EXPECT_EQ(textOf(answer), "\x08\x01");  // the first field: SERVING
}

// Asks one question and takes one answer.
class OneAnswer : public grpc::ClientBidiReactor<grpc::ByteBuffer, grpc::ByteBuffer> {
  public:
    explicit OneAnswer(const std::string& question) : question_(bufferOf(question)) {}

    void Begin() {
        StartWrite(&question_);
        StartRead(&answer_);
        StartCall();
    }
    void OnReadDone(bool) override { StartWritesDone(); }
    void OnDone(const grpc::Status& status) override { ended_.set_value(status); }

    std::string Answer() {
        const grpc::Status status = ended_.get_future().get();
        EXPECT_TRUE(status.ok()) << status.error_message();
        return textOf(answer_);
    }

  private:
    grpc::ByteBuffer question_, answer_;
    std::promise<grpc::Status> ended_;
};

TEST_F(StandardServices, TellWhichServicesThereAre) {
    grpc::ClientContext context;
    OneAnswer reactor(std::string("\x3a\x00", 2));  // list_services
    stub->PrepareBidiStreamingCall(
        &context, "/grpc.reflection.v1alpha.ServerReflection/ServerReflectionInfo", {}, &reactor);
    reactor.Begin();
    const std::string services = reactor.Answer();
    for (const char* name :
         {"Alerts", "Boards", "Configuration", "Host", "Objects", "Operations", "Sessions"})
        EXPECT_NE(services.find(std::string("oam.v1.") + name), std::string::npos) << name;
    EXPECT_NE(services.find("grpc.health.v1.Health"), std::string::npos);
}

}  // namespace
}  // namespace oam::test
