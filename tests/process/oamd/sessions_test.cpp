// Sessions and their handles: the daemon's numbers, good in their session alone.
#include "daemon_test.h"

namespace oam::test {
namespace {

// A session for as long as it lives.
class Session {
  public:
    explicit Session(const Installation& home) : client(home) {
        stream = client.sessions->Attach(&context, v1::AttachRequest());
        v1::AttachEvent event;
        if (stream->Read(&event)) id = event.session();
    }
    ~Session() { End(); }

    void End() { context.TryCancel(); }

    grpc::Status Open(const std::string& name, bool write, std::uint64_t* handle) {
        v1::OpenRequest request;
        request.set_session(id);
        request.set_name(name);
        request.set_write(write);
        v1::OpenResponse response;
        const auto status = Call(*client.sessions, &v1::Sessions::Stub::Open, request, &response);
        *handle = response.handle();
        return status;
    }
    grpc::Status Get(std::uint64_t handle, std::string* value) {
        v1::GetKeywordRequest request;
        request.set_session(id);
        request.set_handle(handle);
        request.set_keyword("Product");
        v1::ValueResponse response;
        const auto status =
            Call(*client.sessions, &v1::Sessions::Stub::GetKeyword, request, &response);
        *value = response.value();
        return status;
    }

    Client client;
    grpc::ClientContext context;
    std::unique_ptr<grpc::ClientReader<v1::AttachEvent>> stream;
    std::string id;
};

constexpr const char* kBoard = "Sim E1 left";

class DaemonSessions : public DaemonTest {
  protected:
    void SetUp() override { Start(); }
};

TEST_F(DaemonSessions, OpenReadChangeAndCommit) {
    Session session(home);
    ASSERT_EQ(session.id.size(), 32u);
    std::uint64_t handle = 0;
    ASSERT_TRUE(session.Open(kBoard, true, &handle).ok());
    std::string value;
    ASSERT_TRUE(session.Get(handle, &value).ok());
    EXPECT_EQ(value, "SIM-E1");
    v1::SetKeywordRequest set;
    set.set_session(session.id);
    set.set_handle(handle);
    set.set_keyword("Number");
    set.set_value("40");
    v1::EmptyResponse nothing;
    ASSERT_TRUE(
        Call(*session.client.sessions, &v1::Sessions::Stub::SetKeyword, set, &nothing).ok());
    v1::CloseRequest close;
    close.set_session(session.id);
    close.set_handle(handle);
    v1::CloseResponse closed;
    ASSERT_TRUE(Call(*session.client.sessions, &v1::Sessions::Stub::Close, close, &closed).ok());
    EXPECT_GT(closed.generation(), 0u);
    EXPECT_EQ(Tool({"get", kBoard, "Number"}), "40\n");
}

TEST_F(DaemonSessions, HandlesOfOthersAndOfNobodyReachNothing) {
    Session first(home), second(home);
    std::uint64_t handle = 0;
    ASSERT_TRUE(first.Open(kBoard, false, &handle).ok());
    std::string value;
    for (const std::uint64_t number :
         {handle, std::uint64_t{0}, std::uint64_t{0x7fffffffffff}, ~std::uint64_t{0}})
        EXPECT_EQ(second.Get(number, &value).error_code(), grpc::StatusCode::NOT_FOUND);
    EXPECT_TRUE(first.Get(handle, &value).ok());
}

TEST_F(DaemonSessions, ThatEndCloseWhatTheyLeftOpen) {
    Session other(home);
    {
        Session session(home);
        std::uint64_t handle = 0;
        ASSERT_TRUE(session.Open(kBoard, true, &handle).ok());
        EXPECT_EQ(other.Open(kBoard, true, &handle).error_code(),
                  grpc::StatusCode::FAILED_PRECONDITION);
    }
    // The daemon notices by itself.
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    std::uint64_t handle = 0;
    while (!other.Open(kBoard, true, &handle).ok())
        ASSERT_LT(std::chrono::steady_clock::now(), limit);
}

TEST_F(DaemonSessions, HaveABoundedNumberOfHandles) {
    Session session(home);
    std::uint64_t handle = 0;
    grpc::Status status;
    int opened = 0;
    while ((status = session.Open(kBoard, false, &handle)).ok()) ++opened;
    EXPECT_EQ(opened, 256);
    EXPECT_EQ(status.error_code(), grpc::StatusCode::RESOURCE_EXHAUSTED);
    // Nobody else is the poorer for it.
    EXPECT_NE(Tool({"board", "list"}), "");
}

}  // namespace
}  // namespace oam::test
