// The metrics' address: what it answers, and that no client keeps another waiting.
#include "metrics/metrics_listener.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <vector>

#include "support/http.h"

namespace oam::server {
namespace {

using test::HttpGet;
using test::HttpRequest;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Metrics : public ::testing::Test {
  protected:
    std::string text = "x 1\n";
    MetricsListener listener{ListenAddress::Parse("0"), [this] { return text; }};
    const std::string address = listener.Address();
};

TEST_F(Metrics, AreServedOnTheLoopbackUnlessToldOtherwise) {
    EXPECT_THAT(address, StartsWith("127.0.0.1:"));
    const std::string answer = HttpGet(address, "/metrics");
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 200 OK\r\n"));
    EXPECT_THAT(answer,
                HasSubstr("\r\nContent-Type: text/plain; version=0.0.4; charset=utf-8\r\n"));
    EXPECT_THAT(answer, HasSubstr("\r\nContent-Length: 4\r\n"));
    EXPECT_EQ(test::BodyOf(answer), "x 1\n");
}

TEST_F(Metrics, AreServedWholeWhenTheyAreLong) {
    text.assign(5000000, 'x');
    EXPECT_EQ(test::BodyOf(HttpGet(address, "/metrics?name=value")), text);
}

TEST_F(Metrics, AreAskedForWithGetOrHeadAtOnePlace) {
    EXPECT_THAT(HttpGet(address, "/"), StartsWith("HTTP/1.1 404 "));
    EXPECT_THAT(HttpGet(address, "/metrics/../../etc/passwd"), StartsWith("HTTP/1.1 404 "));
    EXPECT_THAT(HttpRequest(address, "POST /metrics HTTP/1.1\r\n\r\n"),
                StartsWith("HTTP/1.1 405 "));
    const std::string head = HttpRequest(address, "HEAD /metrics HTTP/1.0\r\n\r\n");
    EXPECT_THAT(head, StartsWith("HTTP/1.1 200 OK\r\n"));
    EXPECT_EQ(test::BodyOf(head), "");
}

TEST_F(Metrics, AnswerNonsenseWithARefusal) {
    for (const char* nonsense : {"\r\n\r\n", "GET\r\n\r\n", "GET /metrics\r\n\r\n", "a b c\r\n\r\n",
                                 "GET  HTTP/1.1\r\n\r\n"})
        EXPECT_THAT(HttpRequest(address, nonsense), StartsWith("HTTP/1.1 4")) << nonsense;
    EXPECT_THAT(HttpRequest(address, std::string(20000, 'x')), StartsWith("HTTP/1.1 431 "));
    EXPECT_THAT(HttpGet(address, "/metrics"), StartsWith("HTTP/1.1 200 "));
}

TEST_F(Metrics, AreThereForOthersWhileSomeSayNothing) {
    std::vector<int> silent;
    for (int i = 0; i < 10; ++i) silent.push_back(test::ConnectTo(address));
    (void)send(silent[0], "GET /metr", 9, MSG_NOSIGNAL);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(HttpGet(address, "/metrics"), StartsWith("HTTP/1.1 200 "));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(4));
    for (const int one : silent) close(one);
}

TEST_F(Metrics, AreThereAgainWhenManySayNothing) {
    std::vector<int> silent;
    for (int i = 0; i < 20; ++i) silent.push_back(test::ConnectTo(address));
    EXPECT_THAT(HttpGet(address, "/metrics"), StartsWith("HTTP/1.1 200 "));
    for (const int one : silent) close(one);
}

TEST(MetricsAddress, IsAPortOrAHostAndAPort) {
    for (const char* good : {"0", ":0", "127.0.0.1:0", "[::1]:0", "0.0.0.0:65535"})
        EXPECT_NO_THROW((void)ListenAddress::Parse(good)) << good;
    for (const char* bad :
         {"", ":", "x", "65536", "-1", "1x", "localhost:1", "127.0.0.1:", "127.0.0.1:99999999999"})
        EXPECT_THROW((void)ListenAddress::Parse(bad), std::runtime_error) << bad;
}

TEST(MetricsAddress, ThatIsTakenIsAFailure) {
    const MetricsListener first(ListenAddress::Parse("0"), [] { return ""; });
    EXPECT_THROW(MetricsListener(ListenAddress::Parse(first.Address()), [] { return ""; }),
                 std::system_error);
}

}  // namespace
}  // namespace oam::server
