// Receivers that raise alerts themselves: how deep that may go.
#include <thread>

#include "alert_room.h"

namespace oam::test {
namespace {

constexpr int kMostNested = 32;

class NestedAlerts : public AlertRoom {
  protected:
    NestedAlerts() { EXPECT_EQ(AlertInit(), OAM_SUCCESS); }

    // From now on the receiver raises an alert for each that it gets, and answers its result.
    void RaiseFrom(const std::string& receiver) {
        doors.On(receiver, [this] { return Raise("again"); });
    }
    size_t CallsOf(const std::string& receiver) { return doors.CallsOf({receiver}).size(); }
};

TEST_F(NestedAlerts, EndAtThirtyTwoAndTheRefusalComesBack) {
    InstallCallback();
    RaiseFrom("callback");
    EXPECT_EQ(Raise("first"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(CallsOf("callback"), static_cast<size_t>(kMostNested));
}

TEST_F(NestedAlerts, RefusedOneIsNotLogged) {
    OpenLog();
    InstallCallback();
    RaiseFrom("callback");
    EXPECT_EQ(Raise("first"), OAMERR_ACCESS_DENIED);
    const std::string log = Log();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1 + kMostNested);
}

TEST_F(NestedAlerts, FromAComponentOrPluginEnterTheirOwnLaneAgain) {
    for (const char* receiver : {"EmcAlertReceive", "BoardCommAlertReceive"}) {
        doors.Reset();
        RaiseFrom(receiver);
        EXPECT_EQ(Raise("first"), OAMERR_ACCESS_DENIED) << receiver;
        EXPECT_EQ(CallsOf(receiver), static_cast<size_t>(kMostNested));
    }
}

TEST_F(NestedAlerts, AreForgottenWhenTheyAreOver) {
    InstallCallback();
    RaiseFrom("callback");
    EXPECT_EQ(Raise("first"), OAMERR_ACCESS_DENIED);
    doors.Reset();
    for (int i = 0; i < 2 * kMostNested; ++i) EXPECT_EQ(Raise("flat"), OAM_SUCCESS);
}

TEST_F(NestedAlerts, CountForEachThreadAlone) {
    InstallCallback();
    int depth = 0;
    doors.On("callback", [&] {
        if (++depth < kMostNested) return Raise("again");
        doors.Answer("callback", OAM_SUCCESS);
        oam_result other = OAMERR_BASE;
        std::thread([&] { other = Raise("elsewhere"); }).join();
        return other;
    });
    EXPECT_EQ(Raise("first"), OAM_SUCCESS);
    EXPECT_EQ(depth, kMostNested);
}

}  // namespace
}  // namespace oam::test
