#include "startup_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/installation.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kFailed =
    "Fri Nov 20 23:42 - Logging start\n"
    "DllMain(I): *********************************\n"
    "            Initializing Plug-in Components\n"
    "            *********************************\n"
    "Plug-in(I): => Loading /i/lib/good.bpi (1 date)  \n"
    "Plug-in(I): good.bpi DONE\n"
    "Plug-in(I): => Loading /i/lib/bad.bpi (1 date)  \n"
    "Plug-in(E): !! FAILED !! (0xf0027)\n"
    "Fri Nov 20 23:42 - Logging stop\n";

}  // namespace

TEST(StartupErrors, NameWhatWasBeingLoaded) {
    const Installation home;
    home.Write("log", kFailed);
    EXPECT_THAT(StartupErrors(home.Path("log"), 0),
                ElementsAre("Plug-in(I): => Loading /i/lib/bad.bpi (1 date)  ",
                            "Plug-in(E): !! FAILED !! (0xf0027)"));
}

TEST(StartupErrors, AreTheLastTenLines) {
    const Installation home;
    std::string log;
    for (int i = 0; i < 30; ++i) log += "x(E): " + std::to_string(i) + "\n";
    home.Write("log", log);
    const auto errors = StartupErrors(home.Path("log"), 0);
    ASSERT_EQ(errors.size(), 10u);
    EXPECT_EQ(errors.front(), "x(E): 20");
    EXPECT_EQ(errors.back(), "x(E): 29");
}

TEST(StartupErrors, AreNoneWithoutALogOfThisStart) {
    const Installation home;
    EXPECT_THAT(StartupErrors(home.Path("log"), 0), IsEmpty());
    home.Write("log", kFailed);
    EXPECT_THAT(StartupErrors(home.Path("log"), time(nullptr) + 1000), IsEmpty());
}

}  // namespace oam::test
