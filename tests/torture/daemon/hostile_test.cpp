// Clients that mean harm, and what they cost somebody who works beside them: nothing.
#include <grpcpp/create_channel_posix.h>
#include <grpcpp/grpcpp.h>
#include <unistd.h>

#include <filesystem>

#include "cut_connection.h"
#include "daemon_test.h"
#include "raw_client.h"
#include "strange_requests.h"
#include "torture/crash/points.h"
#include "wire/local_socket.h"

namespace oam::torture {
namespace {

using test::Call;
using test::Client;

// Asks without a pause, on a connection of its own, until it goes.
class Bystander {
  public:
    explicit Bystander(const test::Installation& home) : client_(home) {
        thread_ = std::thread([this] { Work(); });
    }
    ~Bystander() {
        isOver_ = true;
        thread_.join();
        EXPECT_EQ(failure_, "");
        EXPECT_GT(answers_, 0u);
    }

  private:
    void Work() {
        while (!isOver_ && failure_.empty()) {
            v1::GetBoardRequest request;
            request.set_name("Sim IP upper");
            v1::Board board;
            const auto status = Call(*client_.boards, &v1::Boards::Stub::GetBoard, request, &board);
            if (!status.ok() || board.product() != "SIM-IP")
                failure_ = "after " + std::to_string(answers_) + ": " + status.error_message();
            ++answers_;
        }
    }

    Client client_;
    std::atomic<bool> isOver_{false};
    std::string failure_;
    std::size_t answers_ = 0;
    std::thread thread_;
};

class HostileClients : public test::DaemonTest {
  protected:
    HostileClients() : DaemonTest(std::filesystem::exists("/dev/shm") ? "/dev/shm" : "/tmp") {}
    void SetUp() override { Start(); }
};

TEST_F(HostileClients, AskForAnythingAndGetAnAnswer) {
    const unsigned long seed = Seed();
    const unsigned count = IsFull() ? 100000 : 1500;
    const Bystander bystander(home);
    std::map<int, unsigned> answers;
    {
        StrangeRequests requests(seed, {"Sim E1 left", "Sim E1 right", "Sim IP lower"});
        test::RawClient client(home);
        for (unsigned i = 0; i < count; ++i) {
            const auto request = requests.Next();
            const auto limit = std::chrono::milliseconds(request.isStream ? 20 : 60000);
            const auto status = client.Ask(request.method, request.bytes, limit);
            ++answers[status.error_code()];
            const bool isGone =
                status.error_code() == grpc::StatusCode::UNAVAILABLE ||
                (status.error_code() == grpc::StatusCode::DEADLINE_EXCEEDED && !request.isStream);
            ASSERT_FALSE(isGone) << request.method << " number " << i << ": "
                                 << status.error_message() << "\nOAM_TORTURE_SEED=" << seed;
        }
    }
    // Some of them must have come through to what they ask for.
    EXPECT_GT(answers[grpc::StatusCode::OK], count / 50);
    EXPECT_GT(answers[grpc::StatusCode::NOT_FOUND], 0u);
    EXPECT_GT(answers[grpc::StatusCode::INVALID_ARGUMENT], 0u);
    std::string told;
    for (const auto& [code, times] : answers)
        told += (told.empty() ? "" : ", ") + Grouped(times) + " with " + std::to_string(code);
    TellFigures("hostile requests", Grouped(count) + " requests, answered " + told);
}

TEST_F(HostileClients, DieInTheMiddleOfARequest) {
    const Bystander bystander(home);
    // One that dies after every so many bytes, up to a request's end.
    const std::size_t step = IsFull() ? 1 : 9;
    bool isCut = true;
    for (std::size_t bytes = 1; isCut; bytes += step) {
        CutConnection connection(home, bytes);
        const auto stub =
            v1::Boards::NewStub(grpc::CreateInsecureChannelFromFd("oamd", connection.Descriptor()));
        grpc::ClientContext context;
        std::thread asking([&] {
            v1::GetBoardRequest request;
            request.set_name("Sim E1 left");
            v1::Board board;
            (void)stub->GetBoard(&context, request, &board);
        });
        isCut = connection.AwaitCut();
        context.TryCancel();
        asking.join();
        ASSERT_LT(bytes, 100000u);
    }
}

TEST_F(HostileClients, HoldAThousandHandles) {
    const Bystander bystander(home);
    Client client(home);
    std::vector<std::unique_ptr<grpc::ClientContext>> contexts;
    std::vector<std::unique_ptr<grpc::ClientReader<v1::AttachEvent>>> streams;
    std::size_t handles = 0;
    std::string session;
    std::uint64_t handle = 0;
    for (int i = 0; i < 4; ++i) {
        contexts.push_back(std::make_unique<grpc::ClientContext>());
        streams.push_back(client.sessions->Attach(contexts.back().get(), v1::AttachRequest()));
        v1::AttachEvent event;
        ASSERT_TRUE(streams.back()->Read(&event));
        session = event.session();
        grpc::Status status;
        do {
            v1::OpenRequest request;
            request.set_session(session);
            request.set_name("Sim E1 left");
            v1::OpenResponse response;
            status = Call(*client.sessions, &v1::Sessions::Stub::Open, request, &response);
            handles += status.ok() ? 1 : 0;
            if (status.ok()) handle = response.handle();
        } while (status.ok());
        EXPECT_EQ(status.error_code(), grpc::StatusCode::RESOURCE_EXHAUSTED);
    }
    EXPECT_GE(handles, 1000u);
    // Numbers that are nobody's, and those of a session that is not theirs.
    for (std::uint64_t number = handle - 50; number != handle + 50; ++number) {
        v1::GetKeywordRequest request;
        request.set_session(std::string(32, '0'));
        request.set_handle(number);
        request.set_keyword("Product");
        v1::ValueResponse response;
        EXPECT_EQ(Call(*client.sessions, &v1::Sessions::Stub::GetKeyword, request, &response)
                      .error_code(),
                  grpc::StatusCode::NOT_FOUND);
    }
    for (const auto& context : contexts) context->TryCancel();
    // They are closed with their sessions: others may write.
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    v1::ChangeObjectRequest request;
    request.set_name("Sim E1 left");
    request.add_changes()->set_keyword("Number");
    request.mutable_changes(0)->set_value("40");
    v1::ChangeObjectResponse response;
    while (!Call(*client.objects, &v1::Objects::Stub::ChangeObject, request, &response).ok())
        ASSERT_LT(std::chrono::steady_clock::now(), limit);
}

TEST_F(HostileClients, TakeEveryConnection) {
    const Bystander bystander(home);
    std::vector<int> silent;
    constexpr int kMoreThanThereMayBe = 1100;
    for (int i = 0; i < kMoreThanThereMayBe; ++i)
        if (const auto one = wire::Connect(wire::SocketPath(home.Root()))) silent.push_back(*one);
    for (const int one : silent) close(one);
    // There is room again.
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    v1::HostInfo info;
    while (!Call(*Client(home).host, &v1::Host::Stub::GetHost, v1::GetHostRequest(), &info).ok())
        ASSERT_LT(std::chrono::steady_clock::now(), limit);
}

}  // namespace
}  // namespace oam::torture
