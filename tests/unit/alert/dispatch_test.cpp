// Dispatch: who receives an alert, in which order, and what the one who raised it is answered.
#include "alert/dispatch.h"

#include <future>
#include <thread>

#include "alert_room.h"
#include "plugins/recorder/host.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;

class Dispatch : public AlertRoom {
  protected:
    Dispatch() { EXPECT_EQ(AlertInit(), OAM_SUCCESS); }
};

TEST_F(Dispatch, OrderIsComponentsPluginsServerAndClientsAscending) {
    InstallCallback();
    for (unsigned long client : {9ul, 3ul}) EXPECT_EQ(_oamAlertRegister(client), OAM_SUCCESS);
    EXPECT_EQ(Raise("hello"), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(),
                ElementsAre("EmcAlertReceive(hello)", "BoardCommAlertReceive(hello)",
                            "callback(4294967295, hello)", "callback(3, hello)",
                            "callback(9, hello)"));
}

TEST_F(Dispatch, LogComesFirst) {
    OpenLog();
    std::string logged;
    doors.On("EmcAlertReceive", [&] {
        logged = Log();
        return OAM_SUCCESS;
    });
    EXPECT_EQ(Raise("hello"), OAM_SUCCESS);
    EXPECT_EQ(logged, kLoggingStart + LogLine("S", 'I', "hello"));
}

TEST_F(Dispatch, WithoutACallbackEndsWithThePlugins) {
    EXPECT_EQ(Raise("hello"), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(),
                ElementsAre("EmcAlertReceive(hello)", "BoardCommAlertReceive(hello)"));
}

TEST_F(Dispatch, ReservedClientIsCalledOnceOnly) {
    InstallCallback();
    EXPECT_EQ(_oamAlertRegister(OAM_INTERNAL_CLIENT), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertRegister(OAM_INTERNAL_CLIENT + 1), OAM_SUCCESS);
    EXPECT_EQ(Raise("hello"), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"callback"}),
                ElementsAre("callback(4294967295, hello)", "callback(4294967296, hello)"));
}

TEST_F(Dispatch, AnswersTheLastFailureAndCallsEveryReceiver) {
    InstallCallback();
    EXPECT_EQ(_oamAlertRegister(3), OAM_SUCCESS);
    doors.Answer("EmcAlertReceive", oam_result(1));
    EXPECT_EQ(Raise("a"), oam_result(1));
    doors.Answer("BoardCommAlertReceive", oam_result(2));
    EXPECT_EQ(Raise("b"), oam_result(2));
    int calls = 0;
    doors.On("callback", [&] { return ++calls == 1 ? oam_result(3) : OAM_SUCCESS; });
    EXPECT_EQ(Raise("c"), oam_result(3)) << "the client's success does not cover it";
    EXPECT_EQ(calls, 2);
}

TEST_F(Dispatch, PassesTheCallersOwnRecordOn) {
    static const oam_msg_tag* received = nullptr;
    EXPECT_EQ(_oamAlertRegisterCallback([](unsigned long, const oam_msg_tag* message) {
                  received = message;
                  return 0u;
              }),
              OAM_SUCCESS);
    const Message message(OAMEVN_ALERT, 0, "S", "T");
    EXPECT_EQ(_oamAlertNotify(message.Get()), OAM_SUCCESS);
    EXPECT_EQ(received, message.Get());
}

TEST_F(Dispatch, ClientThatComesDuringADeliveryWaitsForTheNext) {
    InstallCallback();
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
    doors.On("callback", [&] {
        (void)_oamAlertUnregister(7);
        EXPECT_EQ(_oamAlertRegister(7), OAM_SUCCESS);
        return OAM_SUCCESS;
    });
    EXPECT_EQ(_oamAlertRegister(2), OAM_SUCCESS);
    EXPECT_EQ(Raise("first"), OAM_SUCCESS);
    // The server's own call came before the clients were noted down, so 7 was there in time.
    EXPECT_THAT(doors.TakeCalls(),
                ElementsAre("EmcAlertReceive(first)", "BoardCommAlertReceive(first)",
                            "callback(4294967295, first)", "callback(2, first)",
                            "callback(5, first)", "callback(7, first)"));
}

TEST_F(Dispatch, ClientsAreNotedDownBeforeTheFirstOfThemIsCalled) {
    InstallCallback();
    EXPECT_EQ(_oamAlertRegister(2), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
    int calls = 0;
    doors.On("callback", [&] {
        if (++calls == 2) {  // client 2
            EXPECT_EQ(_oamAlertUnregister(5), OAM_SUCCESS);
            EXPECT_EQ(_oamAlertRegister(9), OAM_SUCCESS);
        }
        return OAM_SUCCESS;
    });
    EXPECT_EQ(Raise("first"), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"callback"}),
                ElementsAre("callback(4294967295, first)", "callback(2, first)",
                            "callback(5, first)"));
}

TEST_F(Dispatch, CallbacksOfSeveralThreadsRunAtTheSameTime) {
    InstallCallback();
    Latch latch;
    doors.On("callback", [&] {
        latch.Wait();
        return OAM_SUCCESS;
    });
    std::thread first([&] { EXPECT_EQ(Raise("first"), OAM_SUCCESS); });
    std::thread second([&] { EXPECT_EQ(Raise("second"), OAM_SUCCESS); });
    EXPECT_TRUE(latch.WaitForArrival(2)) << "neither waits for the other";
    latch.Open();
    first.join();
    second.join();
}

TEST_F(Dispatch, ComponentsAndPluginsMayWorkOnTwoAlertsAtTheSameTime) {
    Latch inPlugins;
    doors.On("BoardCommAlertReceive", [&] {
        inPlugins.Wait();
        return OAM_SUCCESS;
    });
    std::thread first([&] { EXPECT_EQ(Raise("first"), OAM_SUCCESS); });
    ASSERT_TRUE(inPlugins.WaitForArrival());
    std::thread second([&] { EXPECT_EQ(Raise("second"), OAM_SUCCESS); });
    EXPECT_TRUE(doors.WaitForCall("EmcAlertReceive(second)"));
    inPlugins.Open();
    first.join();
    second.join();
}

TEST_F(Dispatch, WithoutMemoryForTheClientsStillReachesEveryoneElse) {
    InstallCallback();
    // More than find room without memory.
    for (unsigned long client = 1; client <= 33; ++client) {
        EXPECT_EQ(_oamAlertRegister(client), OAM_SUCCESS);
    }
    const Message message(OAMEVN_ALERT, 0, "S", "T");
    EXPECT_EQ(FailEachAllocation([&] { return _oamAlertNotify(message.Get()); },
                                 [&](oam_result result) {
                                     EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_THAT(doors.TakeCalls(),
                                                 ElementsAre("EmcAlertReceive(T)",
                                                             "BoardCommAlertReceive(T)",
                                                             "callback(4294967295, T)"));
                                 }),
              OAM_SUCCESS);
}

}  // namespace
}  // namespace oam::test
