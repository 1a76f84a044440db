// Board communication as a whole: its start, its end, and what every plug-in is told or asked.
#include "board_room.h"
#include "small_module.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class BoardComm : public BoardRoom {
  protected:
    ~BoardComm() override { BoardCommExit(); }
    static oam_msg_tag Message() {
        oam_msg_tag message{};
        message.size = sizeof message;
        return message;
    }
    // The steps of starting and ending that lie outside this room.
    std::vector<std::string> Steps() {
        return doors.CallsOf({"OpenObject", "_oamDbEnumObjects", "oamShadowInit", "oamShadowExit",
                              "zolSleep"});
    }
};

TEST_F(BoardComm, StartsPluginsThenProductsThenBoardsThenTheAutomaticStart) {
    const SmallModule module(home, "x.bpi");
    EXPECT_EQ(BoardCommInit(), OAM_SUCCESS);
    EXPECT_TRUE(isOpenForRequests());
    EXPECT_TRUE(WaitForThreads());
    EXPECT_THAT(Steps(), ElementsAre("OpenObject(handle, x.bpi, 0)", "_oamDbEnumObjects(0)",
                                     "_oamDbEnumObjects(1)", "oamShadowInit()", "zolSleep(5)"));
}

TEST_F(BoardComm, EndsInReverseAndIsSafeBeforeAnyStart) {
    const SmallModule module(home, "x.bpi");
    BoardCommExit();
    EXPECT_EQ(BoardCommInit(), OAM_SUCCESS);
    AddBoard("B", 0, plugins().Find("x.bpi"));
    EXPECT_EQ(products().Insert("Prod", plugins().Find("x.bpi")), OAM_SUCCESS);
    BoardCommExit();
    EXPECT_FALSE(isOpenForRequests());
    EXPECT_THAT(BoardNames(), IsEmpty());
    EXPECT_EQ(ProductsGetCount(), 0);
    EXPECT_EQ(PluginsGetCount(), 0);
    EXPECT_EQ(module.Calls(), "Init(x.bpi)\nExit()\n");
}

TEST_F(BoardComm, StopsMarkedBoardsBeforeItEndsOneByOneInTheCallersThread) {
    EXPECT_EQ(BoardCommInit(), OAM_SUCCESS);
    EXPECT_TRUE(WaitForThreads());
    const CPlugin* plugin = AddPlugin();
    g_bAutoStopEnabled = true;
    AddBoard("Marked", 0, plugin, [](BoardValues& values) { values.autoStop = true; });
    AddBoard("Unmarked", 1, plugin);
    doors.TakeCalls();
    BoardCommExit();
    EXPECT_THAT(doors.Calls(),
                ElementsAre("AlertNotify(OAMEVN_STOPBOARD_REQ, 0, Marked, Stop board in 150ms.)",
                            "zolSleepMs(150)", "p1.StopBoard(Marked)",
                            "AlertNotify(OAMEVN_STOPBOARD_DONE, 0, Marked, Board is stopped.)",
                            "oamShadowExit()", "p1.Exit()"));
}

TEST_F(BoardComm, FailedPluginsEndTheStart) {
    const SmallModule module(home, "x.bpi", "small_without_test_board");
    EXPECT_EQ(BoardCommInit(), oam_result(ZOL_NO_SYMBOL));
    EXPECT_THAT(Steps(), ElementsAre("oamShadowExit()"));
    EXPECT_FALSE(isOpenForRequests());
    EXPECT_EQ(PluginsGetCount(), 0);
}

TEST_F(BoardComm, FailedProductsEndTheStart) {
    const SmallModule module(home, "x.bpi");
    doors.Answer("OpenObject", oam_result(0x42));
    EXPECT_EQ(BoardCommInit(), oam_result(0x42));
    EXPECT_THAT(Steps(), ElementsAre("OpenObject(handle, x.bpi, 0)", "oamShadowExit()"));
    EXPECT_EQ(module.Calls(), "Init(x.bpi)\nExit()\n");
    EXPECT_FALSE(isOpenForRequests());
}

TEST_F(BoardComm, FailedShadowEndsTheStart) {
    const SmallModule module(home, "x.bpi");
    doors.Answer("oamShadowInit", OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(BoardCommInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(module.Calls(), "Init(x.bpi)\nExit()\n");
    EXPECT_EQ(PluginsGetCount(), 0);
    EXPECT_FALSE(isOpenForRequests());
}

TEST_F(BoardComm, AlertsReachEveryPluginInNameOrderAndTheLastFailureCounts) {
    AddPlugin<2>("b.bpi");
    AddPlugin<1>("a.bpi");
    AddPlugin<3>("c.bpi");
    const oam_msg_tag message = Message();
    EXPECT_EQ(BoardCommAlertReceive(&message), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(), IsEmpty()) << "not before it runs";
    openForRequests();
    doors.Answer("p1.AlertReceive", oam_result(1));
    doors.Answer("p2.AlertReceive", oam_result(2));
    EXPECT_EQ(BoardCommAlertReceive(&message), oam_result(2));
    EXPECT_THAT(doors.Calls(),
                ElementsAre("p1.AlertReceive()", "p2.AlertReceive()", "p3.AlertReceive()"));
    closeForRequests();
}

TEST_F(BoardComm, FirstPluginInNameOrderNamesACodeWhetherItRunsOrNot) {
    AddPlugin<2>("b.bpi");
    AddPlugin<1>("a.bpi");
    EXPECT_EQ(BoardCommGetText(5), nullptr);
    doors.TakeCalls();
    doors.Answer("p1.GetText", oam_result(1));
    EXPECT_STREQ(BoardCommGetText(5), "a text");
    EXPECT_THAT(doors.Calls(), ElementsAre("p1.GetText(5)"));
}

}  // namespace
}  // namespace oam::test
