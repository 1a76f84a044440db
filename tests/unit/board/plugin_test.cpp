// Loading board plug-ins with small real modules: their seventeen entries, three of them optional.
#include "board_room.h"
#include "small_module.h"

namespace oam::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

class Plugins : public BoardRoom {
  protected:
    ~Plugins() override { (void)pluginsExit(); }

    static std::vector<std::string> Loaded() {
        std::vector<std::string> names;
        for (int i = 0; i < PluginsGetCount(); ++i) names.emplace_back(PluginsGetAt(i));
        return names;
    }
};

TEST_F(Plugins, AreListedLoadedAndConfirmed) {
    const SmallModule module(home, "x.bpi");
    EXPECT_EQ(pluginsInit(), OAM_SUCCESS);
    EXPECT_THAT(doors.DebugText(),
                StartsWith("\nListing of board plug-in files found:\n"
                           "\nFILENAME        SIZE  DATE                      ATTR\n"
                           "--------        ----  ----                      ----\n"
                           "x.bpi        "));
    EXPECT_THAT(doors.Calls(),
                ElementsAre(HasSubstr("AlertNotify(OAMEVN_ALERT, 0, Plug-in, => Loading "),
                            "CreateObject(x.bpi, null)",
                            "AlertNotify(OAMEVN_ALERT, 0, Plug-in, x.bpi DONE)"));
    EXPECT_EQ(module.Calls(), "Init(x.bpi)\n");
}

TEST_F(Plugins, DirectoryThatIsMissingIsTold) {
    home.Remove("lib");
    EXPECT_EQ(pluginsInit(), OAM_SUCCESS);
    EXPECT_THAT(doors.DebugText(), HasSubstr("Directory for board plug-in files \"" +
                                             home.Path("lib") + "\" not found.\n"));
}

TEST_F(Plugins, NoneAtAllIsTold) {
    home.Write("lib/x.bpi.bak", "");
    EXPECT_EQ(pluginsInit(), OAM_SUCCESS);
    EXPECT_THAT(doors.DebugText(), HasSubstr("No board plug-in files found.\n"));
}

TEST_F(Plugins, AreListedInNameOrderWithoutRegardToCase) {
    const SmallModule b(home, "B.bpi");
    const SmallModule a(home, "a.BPI");
    EXPECT_EQ(pluginsInit(), OAM_SUCCESS);
    EXPECT_THAT(Loaded(), ElementsAre("a.BPI", "B.bpi"));
}

TEST_F(Plugins, WithoutTheOptionalEntriesGetDefaults) {
    const SmallModule module(home, "x.bpi", "small_without_options");
    EXPECT_EQ(pluginsInit(), OAM_SUCCESS);
    PluginEntries entries;
    ASSERT_TRUE(plugins().EntriesOf("x.bpi", &entries));
    int status = 7;
    EXPECT_EQ(entries.GetBoardStatus("B", 0, &status), OAMERR_NOT_SUPPORTED_WARNING);
    EXPECT_EQ(status, 7);
    EXPECT_EQ(entries.object.GetText(5), nullptr);
    EXPECT_EQ(entries.object.AlertReceive(nullptr), OAM_SUCCESS);
}

TEST_F(Plugins, OwnOptionalEntriesArePreferred) {
    const SmallModule module(home, "x.bpi");
    EXPECT_EQ(pluginsInit(), OAM_SUCCESS);
    PluginEntries entries;
    ASSERT_TRUE(plugins().EntriesOf("x.bpi", &entries));
    int status = 7;
    EXPECT_EQ(entries.GetBoardStatus("B", 0, &status), OAM_SUCCESS);
    EXPECT_EQ(status, 1);
    EXPECT_STREQ(entries.object.GetText(5), "text of a small module");
}

TEST_F(Plugins, EveryEntryIsBoundToItsOwnSymbol) {
    const SmallModule module(home, "x.bpi");
    EXPECT_EQ(pluginsInit(), OAM_SUCCESS);
    PluginEntries entries;
    ASSERT_TRUE(plugins().EntriesOf("x.bpi", &entries));
    EXPECT_EQ(entries.object.mark.module, KorMarkedModule("x.bpi"));
    EXPECT_EQ(entries.DetectBoards(), OAM_SUCCESS);
    EXPECT_EQ(entries.CreateBoard("c", "p"), OAM_SUCCESS);
    EXPECT_EQ(entries.DestroyBoard("d"), OAM_SUCCESS);
    EXPECT_EQ(entries.object.OpenObject(1, 0), OAM_SUCCESS);
    EXPECT_EQ(entries.object.CloseObject(1), OAM_SUCCESS);
    EXPECT_EQ(entries.object.SetKeyword(1, "s", "v"), OAM_SUCCESS);
    EXPECT_EQ(entries.object.GetKeyword(1, "g", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(entries.object.GetQualifier(1, "q", "Max", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(entries.StartBoard("a"), OAM_SUCCESS);
    EXPECT_EQ(entries.StopBoard("o"), OAM_SUCCESS);
    EXPECT_EQ(entries.TestBoard("t", 1), OAM_SUCCESS);
    EXPECT_EQ(entries.SendBuffer("b", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(module.Calls(),
              "Init(x.bpi)\nDetectBoards()\nCreateBoard(c)\nDestroyBoard(d)\nOpenObject()\n"
              "CloseObject()\nSetKeyword(s)\nGetKeyword(g)\nGetQualifier(q)\nStartBoard(a)\n"
              "StopBoard(o)\nTestBoard(t)\nSendBuffer(b)\n");
}

TEST_F(Plugins, WithoutARequiredEntryFailAndAreExited) {
    const SmallModule module(home, "x.bpi", "small_without_test_board");
    EXPECT_EQ(pluginsInit(), oam_result(ZOL_NO_SYMBOL));
    EXPECT_THAT(doors.Calls(),
                Contains("AlertNotify(OAMEVN_ALERT, 2, Plug-in, !! FAILED !! (0xf0028))"));
    EXPECT_THAT(doors.Calls(), Not(Contains(StartsWith("CreateObject("))));
    EXPECT_EQ(module.Calls(), "Exit()\n") << "its Exit was bound";
    EXPECT_THAT(Loaded(), IsEmpty());
}

TEST_F(Plugins, ThatCannotBeLoadedAreTold) {
    home.Write("lib/x.bpi", "no shared object");
    EXPECT_EQ(pluginsInit(), oam_result(0xf0027));
    EXPECT_THAT(doors.DebugText(), HasSubstr("dlopen " + home.Path("lib/x.bpi") + " fail: "));
    EXPECT_THAT(doors.Calls(),
                Contains("AlertNotify(OAMEVN_ALERT, 2, Plug-in, !! FAILED !! (0xf0027))"));
    EXPECT_THAT(Loaded(), IsEmpty());
}

TEST_F(Plugins, LongPathIsToldLikeAnyFailure) {
    home.Write("lib/" + std::string(256 - home.Path("lib/").size(), 'x') + ".bpi", "");
    EXPECT_EQ(pluginsInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_THAT(doors.Calls(),
                ElementsAre("AlertNotify(OAMEVN_ALERT, 2, Plug-in, !! FAILED !! (0x40000003))"));
}

TEST_F(Plugins, AllAreExitedInNameOrderAndTheLastFailureCounts) {
    AddPlugin<2>("b.bpi");
    AddPlugin<1>("a.bpi");
    AddPlugin<3>("c.bpi");
    EXPECT_EQ(plugins().Insert("unbound.bpi"), OAM_SUCCESS);
    doors.Answer("p1.Exit", oam_result(1));
    doors.Answer("p2.Exit", oam_result(2));
    EXPECT_EQ(pluginsExit(), oam_result(2));
    EXPECT_THAT(doors.Calls(), ElementsAre("p1.Exit()", "p2.Exit()", "p3.Exit()"));
    EXPECT_EQ(PluginsGetCount(), 0);
    EXPECT_EQ(pluginsExit(), OAM_SUCCESS);
}

template <class... Parameters>
unsigned throwing(Parameters...) {
    throw 5;
}

unsigned lookingEntry(const char*) {
    KorCallInside call;
    for (unsigned mark = 0; mark < kKorMarks; ++mark)
        if (KorCallAt(mark, &call)) return std::string(call.about) == "Board 3" ? 1 : 2;
    return 3;
}

TEST(PluginEntries, MarkEachCallWithItsBoard) {
    PluginEntries entries;
    entries.startBoard = &lookingEntry;
    entries.SetModule(KorMarkedModule("marked.bpi"));
    EXPECT_EQ(entries.StartBoard("Board 3"), oam_result(1));
    KorEntryUse use;
    ASSERT_TRUE(KorUseAt(entries.object.mark.module, oam::kStartBoardEntry.number, &use));
    EXPECT_STREQ(use.module, "marked.bpi");
    EXPECT_EQ(use.calls, 1u);
}

TEST(PluginEntries, TurnWhatIsThrownIntoAFailure) {
    PluginEntries entries;
    entries.detectBoards = &throwing;
    entries.createBoard = &throwing;
    entries.destroyBoard = &throwing;
    entries.startBoard = &throwing;
    entries.stopBoard = &throwing;
    entries.testBoard = &throwing;
    entries.sendBuffer = &throwing;
    entries.getBoardStatus = &throwing;
    int status = 0;
    EXPECT_EQ(entries.DetectBoards(), OAM_REASON_FAILED);
    EXPECT_EQ(entries.CreateBoard("b", "p"), OAM_REASON_FAILED);
    EXPECT_EQ(entries.DestroyBoard("b"), OAM_REASON_FAILED);
    EXPECT_EQ(entries.StartBoard("b"), OAM_REASON_FAILED);
    EXPECT_EQ(entries.StopBoard("b"), OAM_REASON_FAILED);
    EXPECT_EQ(entries.TestBoard("b", 1), OAM_REASON_FAILED);
    EXPECT_EQ(entries.SendBuffer("b", nullptr, 0), OAM_REASON_FAILED);
    EXPECT_EQ(entries.GetBoardStatus("b", 0, &status), OAM_REASON_FAILED);
}

}  // namespace
}  // namespace oam::test
