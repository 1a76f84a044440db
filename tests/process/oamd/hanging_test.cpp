// A plug-in that does not return: which one, in which entry, of which board, is told by name, and
// nobody else is the poorer.
#include <filesystem>
#include <future>

#include "daemon_test.h"

namespace oam::test {
namespace {

constexpr const char* kBoard = "Demo board";

class HangingPlugin : public DaemonTest {
  protected:
    void SetUp() override {
        std::filesystem::copy_file(OAM_HANGING_PLUGIN, home.Path("lib/hanging.bpi"));
        StartAgain();
        Tool({"board", "add", "--all"});
    }
    void TearDown() override {
        GoOn();
        DaemonTest::TearDown();
    }

    void HangIn(const std::string& entry) {
        told_ = "hang." + entry;
        home.Write(told_, "");
    }
    void GoOn() {
        if (!told_.empty()) home.Remove(std::exchange(told_, ""));
    }

    // Asks until there is a finding with all of these texts in one.
    static testing::AssertionResult Finds(Client& client, const std::vector<std::string>& parts) {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        std::string last;
        do {
            v1::DiagnoseResponse response;
            const auto status =
                Call(*client.host, &v1::Host::Stub::Diagnose, v1::DiagnoseRequest(), &response);
            if (!status.ok()) return testing::AssertionFailure() << status.error_message();
            for (const auto& finding : response.findings()) {
                last = finding.text();
                if (std::all_of(parts.begin(), parts.end(), [&](const std::string& part) {
                        return last.find(part) != std::string::npos;
                    }))
                    return testing::AssertionSuccess();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        } while (std::chrono::steady_clock::now() < limit);
        return testing::AssertionFailure() << "the last finding: " << last;
    }

  private:
    std::string told_;
};

TEST_F(HangingPlugin, IsNamedWithItsEntryAndItsBoard) {
    HangIn("SendBuffer");
    Client client(home);
    auto call = std::async(std::launch::async, [&] {
        v1::SendBufferRequest request;
        request.set_board(kBoard);
        request.set_buffer("x");
        v1::SendBufferResponse response;
        return Call(*client.boards, &v1::Boards::Stub::SendBuffer, request, &response);
    });
    EXPECT_TRUE(
        Finds(client, {"\"hanging.bpi\" is in SendBuffer of \"Demo board\" for ", "since "}));
    EXPECT_TRUE(Finds(client, {"SendBuffer of \"Demo board\" has not returned for ",
                               ": \"hanging.bpi\" is in SendBuffer"}));
    GoOn();
    EXPECT_TRUE(call.get().ok());
}

TEST_F(HangingPlugin, IsToldAlsoWhenNoThreadIsLeftForOtherCalls) {
    HangIn("GetKeyword");
    std::vector<std::future<grpc::Status>> calls;
    Client client(home);
    const auto read = [&] {
        v1::ReadObjectRequest request;
        request.set_name(kBoard);
        v1::ReadObjectResponse response;
        return Call(*client.objects, &v1::Objects::Stub::ReadObject, request, &response);
    };
    const auto list = [&] {
        v1::ListObjectsResponse response;
        return Call(*client.objects, &v1::Objects::Stub::ListObjects, v1::ListObjectsRequest(),
                    &response);
    };
    calls.push_back(std::async(std::launch::async, read));
    constexpr int kMoreThanThereAreThreads = 40;
    for (int i = 0; i < kMoreThanThereAreThreads; ++i)
        calls.push_back(std::async(std::launch::async, list));
    EXPECT_TRUE(Finds(client, {"\"hanging.bpi\" is in GetKeyword of \"Demo board\" for "}));
    GoOn();
    for (auto& call : calls) EXPECT_TRUE(call.get().ok());
}

}  // namespace
}  // namespace oam::test
