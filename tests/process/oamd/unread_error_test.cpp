// Standard error is a pipe that is full and that nobody reads: whatever a client makes the daemon
// say, and the libraries below it, it goes on answering.
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <random>

#include "daemon_test.h"
#include "raw_client.h"
#include "wire/local_socket.h"

namespace oam::test {
namespace {

// Enough that every thread of the transport would have met one that makes it wait.
constexpr int kRounds = 100;

class DaemonWithoutReader : public DaemonTest {
  protected:
    void SetUp() override {
        Start();
        FillError();
    }
    // What it says at its end must find room.
    void TearDown() override {
        std::string all(65536, '\0');
        while (read(error_, all.data(), all.size()) > 0) {
        }
        close(error_);
        DaemonTest::TearDown();
    }

    // The daemon's own pipe, by its name.
    void FillError() {
        const std::string name = "/proc/" + std::to_string(daemon->Pid()) + "/fd/2";
        error_ = open(name.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        ASSERT_GE(error_, 0) << name;
        const std::string line(511, 'x');
        while (write(error_, (line + '\n').data(), 512) > 0) {
        }
        while (write(error_, "\n", 1) > 0) {
        }
        ASSERT_EQ(errno, EAGAIN);
    }

    // On a connection of its own.
    grpc::Status Ask(const std::string& method, const std::string& bytes) {
        return RawClient(home).Ask(method, bytes, std::chrono::seconds(20));
    }

    // A client that does nothing wrong.
    grpc::Status AskWell() { return Ask("/oam.v1.Boards/ListBoards", ""); }

  private:
    int error_ = -1;
};

TEST_F(DaemonWithoutReader, AnswersRequestsWhoseTextsAreNoUtf8) {
    // Field 1, a string of two bytes that are no character.
    const std::string spoiled("\x0a\x02\xc3\x28", 4);
    for (int round = 0; round < kRounds; ++round) {
        const auto status = Ask("/oam.v1.Operations/GetOperation", spoiled);
        ASSERT_NE(status.error_code(), grpc::StatusCode::DEADLINE_EXCEEDED) << "round " << round;
        ASSERT_NE(status.error_code(), grpc::StatusCode::OK);
    }
    const auto status = AskWell();
    EXPECT_TRUE(status.ok()) << status.error_message();
}

TEST_F(DaemonWithoutReader, AnswersThoseBesideBytesThatAreNoCall) {
    std::minstd_rand random(3);
    const std::string preface = "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n";
    for (int round = 0; round < kRounds; ++round) {
        const auto stranger = wire::Connect(wire::SocketPath(home.Root()));
        ASSERT_TRUE(stranger);
        std::string bytes = round % 2 == 0 ? preface : "";
        for (int i = 0; i < 200; ++i) bytes += static_cast<char>(random());
        (void)!send(*stranger, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        close(*stranger);
    }
    const auto status = AskWell();
    EXPECT_TRUE(status.ok()) << status.error_message();
}

TEST_F(DaemonWithoutReader, AnswersThoseWhoseDenialsFindNoRoom) {
    home.Write("oam/roles.conf", "certificate of.nobody viewer\n");
    daemon->Signal(SIGHUP);
    grpc::Status status;
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while ((status = AskWell()).ok()) ASSERT_LT(std::chrono::steady_clock::now(), limit);
    for (int round = 0; round < kRounds; ++round) {
        EXPECT_EQ(status.error_code(), grpc::StatusCode::PERMISSION_DENIED);
        status = AskWell();
    }
}

}  // namespace
}  // namespace oam::test
