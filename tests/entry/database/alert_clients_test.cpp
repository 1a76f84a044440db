// The callback and the table of registered clients.
#include <thread>

#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

class AlertClients : public ServiceTest {
  protected:
    // The client values that one alert reaches, in order.
    std::vector<unsigned long> Reached() {
        alerts.Clear();
        EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "Test", "text"), OAM_SUCCESS);
        std::vector<unsigned long> clients;
        for (const Alert& alert : alerts.All()) clients.push_back(alert.client);
        return clients;
    }
};

unsigned replacedCallback(unsigned long, const oam_msg_tag*) { return 0x77; }

TEST_F(AlertClients, RegistrationNeedsACallback) {
    EXPECT_EQ(_oamAlertRegisterCallback(nullptr), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertRegister(5), OAMERR_NOT_FOUND);
    alerts.Install();
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
}

TEST_F(AlertClients, UnregistrationNeedsNoCallback) {
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertRegisterCallback(nullptr), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertUnregister(6), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamAlertUnregister(5), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertUnregister(5), OAMERR_NOT_FOUND);
}

TEST_F(AlertClients, SecondRegistrationOfAClientIsRefused) {
    Start();
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertRegister(5), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(Reached(), ElementsAre(kServer, 5));
}

TEST_F(AlertClients, LaterCallbackReplacesTheEarlier) {
    Start();
    alerts.Clear();
    EXPECT_EQ(_oamAlertRegisterCallback(&replacedCallback), OAM_SUCCESS);
    EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "Test", "text"), 0x77u);
    EXPECT_THAT(alerts.All(), IsEmpty());
}

TEST_F(AlertClients, RemovedCallbackIsNotCalled) {
    Start();
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(_oamAlertRegisterCallback(nullptr), OAM_SUCCESS);
    EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_THAT(alerts.All(), IsEmpty());
    alerts.Install();
    EXPECT_THAT(Reached(), ElementsAre(kServer, 5)) << "the client stays registered";
}

TEST_F(AlertClients, AreReachedInAscendingOrderHoweverManyComeAndGo) {
    Start();
    std::vector<unsigned long> expected = {kServer};
    for (unsigned long client = 40; client >= 1; --client) {
        EXPECT_EQ(_oamAlertRegister(client), OAM_SUCCESS);
        expected.insert(expected.begin() + 1, client);
        EXPECT_THAT(Reached(), ElementsAreArray(expected));
    }
    // Leaving in another order than they came: 3, 6, ..., then the others.
    for (unsigned long step : {3ul, 1ul}) {
        for (unsigned long client = step; client <= 40; client += step) {
            if (step == 1 && client % 3 == 0) continue;
            EXPECT_EQ(_oamAlertUnregister(client), OAM_SUCCESS);
            std::erase(expected, client);
            EXPECT_THAT(Reached(), ElementsAreArray(expected));
        }
    }
    EXPECT_EQ(_oamAlertUnregister(40), OAMERR_NOT_FOUND);
}

TEST_F(AlertClients, ClientsWiderThan32BitsAreToldApart) {
    Start();
    const unsigned long wide = 0x100000005ul;
    EXPECT_EQ(_oamAlertRegister(wide), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertRegister(0), OAM_SUCCESS);
    EXPECT_THAT(Reached(), ElementsAre(kServer, 0, 5, wide));
}

TEST_F(AlertClients, ReservedClientIsToldOnceEvenWhenItRegisters) {
    Start();
    EXPECT_EQ(_oamAlertRegister(kServer), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertRegister(kServer), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
    EXPECT_THAT(Reached(), ElementsAre(kServer, 5));
    EXPECT_EQ(_oamAlertUnregister(kServer), OAM_SUCCESS);
    EXPECT_THAT(Reached(), ElementsAre(kServer, 5));
}

TEST_F(AlertClients, RegistrationBeforeTheStartHolds) {
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
    Start();
    EXPECT_THAT(Reached(), ElementsAre(kServer, 5));
}

TEST_F(AlertClients, RestartEndsRegistrationsAndKeepsTheCallback) {
    Start();
    for (unsigned long client : {3ul, 9ul}) EXPECT_EQ(_oamAlertRegister(client), OAM_SUCCESS);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(Reached(), ElementsAre(kServer));
    EXPECT_EQ(_oamAlertUnregister(3), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamAlertRegister(9), OAM_SUCCESS);
}

TEST_F(AlertClients, ComeAndGoOnManyThreadsWhileAlertsAreRaised) {
    Start();
    constexpr int kThreads = 4;
    constexpr int kRounds = 50;
    std::vector<std::thread> threads;
    for (unsigned long thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([thread] {
            for (int round = 0; round < kRounds; ++round) {
                for (unsigned long i = 0; i < 20; ++i) {
                    EXPECT_EQ(_oamAlertRegister(1000 * thread + i), OAM_SUCCESS);
                }
                EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "Test", "text"), OAM_SUCCESS);
                for (unsigned long i = 0; i < 20; ++i) {
                    EXPECT_EQ(_oamAlertUnregister(1000 * thread + i), OAM_SUCCESS);
                }
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_THAT(Reached(), ElementsAre(kServer));
}

}  // namespace
}  // namespace oam::test
