// Who receives an alert, in which order, and what becomes of their answers.
#include <mutex>
#include <thread>

#include "support/log_text.h"
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

// Raised by the tests alone.
constexpr unsigned kEvent = OAMEVN_BOARD_DEAD;

class AlertDispatch : public ServiceTest {
  protected:
    void Note(const std::string& receiver) {
        std::lock_guard hold(mutex_);
        order_.push_back(receiver);
    }
    std::vector<std::string> Order() {
        std::lock_guard hold(mutex_);
        return order_;
    }

    // The module's part in an alert: notes itself, does something, answers.
    Recorder::Change Receiver(const std::string& file, unsigned answer,
                              std::function<void()> act = {}) {
        return [this, file, answer, act](ModuleScript& script) {
            script.alertReceive = [=, this](const oam_msg_tag* message) {
                if (message->code != kEvent) return 0u;
                Note(file);
                if (act) act();
                return answer;
            };
        };
    }

  private:
    std::mutex mutex_;
    std::vector<std::string> order_;
};

TEST_F(AlertDispatch, GoesToComponentsThenPluginsThenServerThenClientsInOrder) {
    for (const char* file : {"D.emc", "c.emc"}) AddComponent(file, Receiver(file, 0));
    for (const char* file : {"B.bpi", "a.bpi"}) AddPlugin(file, Receiver(file, 0));
    alerts.AnswerWith([&](const Alert& alert) {
        if (alert.code == kEvent) {
            Note(alert.client == kServer ? "server" : std::to_string(alert.client));
        }
        return 0u;
    });
    for (unsigned long client : {9ul, 3ul}) EXPECT_EQ(_oamAlertRegister(client), OAM_SUCCESS);
    Start();
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_THAT(Order(), ElementsAre("c.emc", "D.emc", "a.bpi", "B.bpi", "server", "3", "9"));
}

TEST_F(AlertDispatch, IsLoggedBeforeAnybodyReceivesIt) {
    std::string log;
    AddComponent("c.emc", Receiver("c.emc", 0, [&] { log = home.Read("oam/log/oammon.log"); }));
    Start();
    EXPECT_EQ(Change("Supervisor", "OammonLog", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(Raise(kEvent, 0, "Test", "the text"), OAM_SUCCESS);
    EXPECT_THAT(log, HasSubstr("the text"));
}

TEST_F(AlertDispatch, RunsOnTheRaisersThread) {
    AddPlugin("a.bpi");
    Start();
    recorder.Clear();
    alerts.Clear();
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), OAM_SUCCESS);
    ASSERT_EQ(alerts.All().size(), 1u);
    EXPECT_EQ(alerts.All()[0].thread, std::this_thread::get_id());
    ASSERT_EQ(recorder.Calls().size(), 1u);
    EXPECT_EQ(recorder.Calls()[0].thread, std::this_thread::get_id());
}

TEST_F(AlertDispatch, EveryReceiverSeesTheRecord) {
    AddComponent("c.emc");
    AddPlugin("a.bpi");
    Start();
    recorder.Clear();
    alerts.Clear();
    EXPECT_EQ(Raise(0x1234, 7, "The source", "The text"), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines(), ElementsAre("c.emc AlertReceive(4660, The source, The text)",
                                              "a.bpi AlertReceive(4660, The source, The text)"));
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{0x1234, 7, "The source", "The text"}));
}

TEST_F(AlertDispatch, AnswersTheLastFailureAndAsksEverybody) {
    AddComponent("c.emc", Receiver("c.emc", 0x11));
    AddComponent("d.emc", Receiver("d.emc", 0));
    AddPlugin("a.bpi", Receiver("a.bpi", 0));
    AddPlugin("b.bpi", Receiver("b.bpi", 0));
    Start();
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), 0x11u);

    recorder.Script("a.bpi", Receiver("a.bpi", 0x22));
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), 0x22u);

    recorder.Script("b.bpi", Receiver("b.bpi", 0x23));
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), 0x23u);

    EXPECT_EQ(_oamAlertRegister(3), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertRegister(9), OAM_SUCCESS);
    alerts.AnswerWith([](const Alert& alert) { return alert.client == kServer ? 0x33u : 0u; });
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), 0x33u);

    alerts.AnswerWith([](const Alert& alert) { return alert.client == 3 ? 0x44u : 0u; });
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), 0x44u);

    alerts.Clear();
    alerts.AnswerWith([](const Alert& alert) { return static_cast<unsigned>(alert.client); });
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), 9u);
    EXPECT_EQ(alerts.All().size(), 3u) << "a failure stops nobody";
}

TEST_F(AlertDispatch, WithoutACallbackAnswersTheModulesFailure) {
    AddPlugin("a.bpi", Receiver("a.bpi", 0x22));
    Start();
    EXPECT_EQ(_oamAlertRegisterCallback(nullptr), OAM_SUCCESS);
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), 0x22u);
}

TEST_F(AlertDispatch, PluginWithoutTheEntryReceivesNothingAndDoesNotFail) {
    home.AddModule("recorder_minimal.bpi", "a.bpi");
    Start();
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_EQ(recorder.Count("AlertReceive"), 0u);
}

TEST_F(AlertDispatch, ThrowingReceiverIsAFailureOfThatReceiverAlone) {
    AddComponent("c.emc", Receiver("c.emc", 0, [] { throw std::runtime_error("refused"); }));
    AddPlugin("a.bpi", Receiver("a.bpi", 0));
    Start();
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), OAM_REASON_FAILED);
    EXPECT_THAT(Order(), ElementsAre("c.emc", "a.bpi"));
    EXPECT_EQ(alerts.Heard(kEvent).size(), 1u);
}

TEST_F(AlertDispatch, StoppedServiceDeliversNothing) {
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "Test", "text"), OAMERR_SERVER_NOT_RUNNING);
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_THAT(alerts.All(), IsEmpty());
    EXPECT_FALSE(home.Exists("oam/log/oam.rpt"));
}

TEST_F(AlertDispatch, ModulesReceiveOnlyWhileTheirCommunicationRuns) {
    AddComponent("c.emc");
    AddPlugin("a.bpi");
    Start();
    // During the start: components from the end of their stage on, plug-ins not yet.
    EXPECT_THAT(
        recorder.Lines({"AlertReceive"}),
        ElementsAre(
            "c.emc AlertReceive(1073750017, DllMain, \t\t\t\t\tDONE)",
            "c.emc AlertReceive(1073750017, DllMain, " + std::string(kStageBanners[3]) + ")",
            "c.emc AlertReceive(1073750017, Plug-in, " + LoadingText(home.Path("lib/a.bpi")) + ")",
            "c.emc AlertReceive(1073750017, Plug-in, a.bpi DONE)",
            "c.emc AlertReceive(1073750017, DllMain, \t\t\t\t\tDONE)",
            "a.bpi AlertReceive(1073750017, DllMain, \t\t\t\t\tDONE)"));
    recorder.Clear();
    auto raise = [] { return unsigned{Raise(kEvent, 0, "Test", "text")}; };
    recorder.Script("c.emc", [&](ModuleScript& script) { script.exit = raise; });
    recorder.Script("a.bpi", [&](ModuleScript& script) { script.exit = raise; });
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(
        recorder.Lines({"AlertReceive", "Exit"}),
        ElementsAre("a.bpi Exit()", "c.emc AlertReceive(1073750024, Test, text)", "c.emc Exit()"))
        << "a plug-in's Exit reaches the components, a component's nobody";
}

TEST_F(AlertDispatch, ClientThatComesDuringADeliveryWaitsForTheNext) {
    Start();
    EXPECT_EQ(_oamAlertRegister(3), OAM_SUCCESS);
    bool changed = false;
    alerts.AnswerWith([&](const Alert& alert) {
        if (alert.client == 3 && !changed) {
            changed = true;
            EXPECT_EQ(_oamAlertRegister(4), OAM_SUCCESS);
            EXPECT_EQ(_oamAlertRegister(2), OAM_SUCCESS);
        }
        return 0u;
    });
    alerts.Clear();
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_THAT(alerts.For(4), IsEmpty());
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_EQ(alerts.For(4).size(), 1u);
    EXPECT_EQ(alerts.For(2).size(), 1u);
}

TEST_F(AlertDispatch, ClientThatLeavesDuringADeliveryStillReceivesIt) {
    Start();
    for (unsigned long client : {3ul, 9ul}) EXPECT_EQ(_oamAlertRegister(client), OAM_SUCCESS);
    alerts.AnswerWith([&](const Alert& alert) {
        return alert.client == 3 ? unsigned{_oamAlertUnregister(9)} : 0u;
    });
    alerts.Clear();
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_EQ(alerts.For(9).size(), 1u);
}

TEST_F(AlertDispatch, ClientRegisteredByTheServersCallTakesPartAtOnce) {
    Start();
    alerts.AnswerWith([&](const Alert& alert) {
        return alert.client == kServer ? unsigned{_oamAlertRegister(4)} : 0u;
    });
    alerts.Clear();
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_EQ(alerts.For(4).size(), 1u) << "the clients are copied after the server's call";
}

TEST_F(AlertDispatch, CallbackMayCallTheService) {
    Start();
    bool done = false;
    alerts.AnswerWith([&](const Alert& alert) {
        if (alert.code == kEvent && !done) {
            done = true;
            EXPECT_EQ(Change("Supervisor", "AutoStartEnabled", "Yes"), OAM_SUCCESS);
        }
        return 0u;
    });
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "AutoStartEnabled"), Is("Yes"));
}

TEST_F(AlertDispatch, CallbacksOwnAlertsNestTo32AndAreRefusedBeyond) {
    Start();
    unsigned deliveries = 0;
    unsigned innermost = 0;
    alerts.AnswerWith([&](const Alert&) {
        ++deliveries;
        const oam_result raised = Raise(kEvent, 0, "Test", "nested");
        if (innermost == 0) innermost = raised;
        return 0u;
    });
    EXPECT_EQ(Raise(kEvent, 0, "Test", "outermost"), OAM_SUCCESS);
    EXPECT_EQ(deliveries, 32u);
    EXPECT_EQ(innermost, OAMERR_ACCESS_DENIED);

    alerts.AnswerWith(nullptr);
    EXPECT_EQ(Raise(kEvent, 0, "Test", "again"), OAM_SUCCESS) << "the depth is given back";
}

TEST_F(AlertDispatch, ModuleMayRaiseAnAlertWhileItReceivesOne) {
    for (const char* file : {"c.emc", "a.bpi"}) {
        auto raiseOnce = [](const oam_msg_tag* message) {
            if (message->code == kEvent) (void)Raise(0x5000, 0, "Module", "from within");
            return 0u;
        };
        const auto script = [&](ModuleScript& module) { module.alertReceive = raiseOnce; };
        file == std::string("c.emc") ? AddComponent(file, script) : AddPlugin(file, script);
    }
    Start();
    recorder.Clear();
    EXPECT_EQ(Raise(kEvent, 0, "Test", "text"), OAM_SUCCESS);
    EXPECT_TRUE(alerts.WaitForCode(0x5000, 2));
    EXPECT_EQ(alerts.Heard(kEvent).size(), 1u);
    EXPECT_THAT(recorder.Lines({"AlertReceive"}),
                UnorderedElementsAre("c.emc AlertReceive(1073750024, Test, text)",
                                     "a.bpi AlertReceive(1073750024, Test, text)",
                                     "c.emc AlertReceive(20480, Module, from within)",
                                     "c.emc AlertReceive(20480, Module, from within)",
                                     "a.bpi AlertReceive(20480, Module, from within)",
                                     "a.bpi AlertReceive(20480, Module, from within)"));
}

}  // namespace
}  // namespace oam::test
