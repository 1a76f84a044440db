// When a gateway may start, and when it must not.
#include "settings.h"

#include "console_test.h"

namespace oam::test {
namespace {

using console::Settings;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// What a gateway with these options says against its own start.
std::string objection(const std::string& listen, const std::string& options) {
    Settings settings;
    settings.listen = listen;
    if (options.find("tls") != options.npos) settings.tls = {"host.pem", "host.key", ""};
    if (options.find("clients") != options.npos) settings.tls.clientAuthorities = "clients.pem";
    settings.withPasswords = options.find("pam") != options.npos;
    const std::string address = WhyNoAddress(&settings);
    return address.empty() ? WhyNotAllowed(settings) : address;
}

TEST(ConsoleSettings, AllowNothingBeyondThisMachineWithoutTlsAndALogin) {
    for (const char* far : {"0.0.0.0:7311", "192.0.2.1:7311", "[::]:7311", "[2001:db8::1]:7311",
                            "[::ffff:127.0.0.1]:7311"}) {
        EXPECT_THAT(objection(far, ""), HasSubstr("TLS")) << far;
        EXPECT_THAT(objection(far, "pam"), HasSubstr("TLS")) << far;
        EXPECT_THAT(objection(far, "tls"), HasSubstr("login")) << far;
        EXPECT_THAT(objection(far, "tls pam"), IsEmpty()) << far;
        EXPECT_THAT(objection(far, "tls clients"), IsEmpty()) << far;
    }
    for (const char* near : {"127.0.0.1:0", "127.5.5.5:7311", "[::1]:7311"}) {
        EXPECT_THAT(objection(near, ""), IsEmpty()) << near;
        EXPECT_THAT(objection(near, "clients"), HasSubstr("--certificate")) << near;
    }
}

TEST(ConsoleSettings, TakeNumericAddressesOnly) {
    for (const char* wrong : {"localhost:7311", "127.0.0.1", "127.0.0.1:", "127.0.0.1:65536",
                              "127.0.0.1:-1", "127.1:80", ":7311", "[::1:7311", "::1:7311", ""})
        EXPECT_THAT(objection(wrong, "tls pam"), HasSubstr("--listen")) << wrong;
}

TEST(ConsoleSettings, EndTheProgramBeforeItListens) {
    const auto run = [](const std::vector<std::string>& options) {
        std::vector<std::string> command{OAM_CONSOLE};
        command.insert(command.end(), options.begin(), options.end());
        return ChildProcess(command, "/").Finish();
    };
    const Finished open = run({"--listen", "0.0.0.0:0"});
    EXPECT_EQ(open.status, 2);
    EXPECT_THAT(open.err, HasSubstr("that needs TLS"));
    const Finished noFile =
        run({"--listen", "0.0.0.0:0", "--pam", "--certificate", "/no.pem", "--key", "/no.key"});
    EXPECT_EQ(noFile.status, 1);
    EXPECT_THAT(noFile.err, HasSubstr("/no.pem"));
    EXPECT_EQ(run({"--help"}).status, 0);
}

}  // namespace
}  // namespace oam::test
