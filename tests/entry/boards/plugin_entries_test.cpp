// The seventeen entries of a board plug-in: fourteen that it must have, and three with a default.
#include "boards.h"
#include "module_log.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Values;
using ::testing::ValuesIn;

constexpr unsigned kOwnCode = 0x30001;

std::string moduleWithout(const std::string& entry) { return "without_" + entry + ".bpi"; }

std::string nameOf(const testing::TestParamInfo<const char*>& row) { return row.param; }

class RequiredPluginEntry : public ServiceTest, public testing::WithParamInterface<const char*> {};

TEST_P(RequiredPluginEntry, StopsTheStartWhenItIsMissing) {
    home.AddModule(moduleWithout(GetParam()), "rec.bpi");
    EXPECT_EQ(_oamInit(), kNoSymbol);
    EXPECT_EQ(StageLines(home.Read("oam/log/startup.log"), kPluginStage),
              LoadingLine("Plug-in", home.Path("lib/rec.bpi")) + FailedLine("Plug-in", kNoSymbol));
    EXPECT_EQ(recorder.Count("Init"), 0u);
}

// The entries are bound in order, Exit second; a plug-in is ended when its Exit was bound.
TEST_P(RequiredPluginEntry, IsBoundAfterExitWhichIsThenCalled) {
    home.AddModule(moduleWithout(GetParam()), "rec.bpi");
    EXPECT_EQ(_oamInit(), kNoSymbol);
    const std::string missing = GetParam();
    if (missing == "Init" || missing == "Exit") {
        EXPECT_THAT(recorder.Lines(), IsEmpty());
    } else {
        EXPECT_THAT(recorder.Lines(), ElementsAre("rec.bpi Exit()"));
    }
}

INSTANTIATE_TEST_SUITE_P(Of14, RequiredPluginEntry,
                         Values("Init", "Exit", "DetectBoards", "CreateBoard", "DestroyBoard",
                                "OpenObject", "CloseObject", "SetKeyword", "GetKeyword",
                                "GetQualifier", "StartBoard", "StopBoard", "TestBoard",
                                "SendBuffer"),
                         nameOf);

class OptionalPluginEntry : public ServiceTest {
  protected:
    void Add(const std::string& module) {
        home.AddModule(module, "rec.bpi");
        recorder.Script("rec.bpi", [](ModuleScript& script) {
            script.products = {kProduct};
            script.texts[kOwnCode] = "OWN_CODE";
            script.status = 5;
        });
        Start();
        board_ = CreateBoard(kProduct);
        recorder.Clear();
    }
    Numbers Status() {
        int status = 77;
        const unsigned code = _oamBoardGetStatus(board_.c_str(), 1, &status);
        return {code, static_cast<unsigned>(status), 0};
    }

    std::string board_;
};

TEST_F(OptionalPluginEntry, GetTextKnowsNothingByDefault) {
    Add(moduleWithout("GetText"));
    EXPECT_EQ(_oamGetText(kOwnCode), nullptr);
    EXPECT_EQ(Status(), (Numbers{0, 5, 0}));
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "test", "heard"), OAM_SUCCESS);
    EXPECT_EQ(recorder.Count("AlertReceive"), 1u);
}

TEST_F(OptionalPluginEntry, AlertReceiveTakesEveryAlertByDefault) {
    Add(moduleWithout("AlertReceive"));
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "test", "not heard"), OAM_SUCCESS);
    EXPECT_EQ(recorder.Count("AlertReceive"), 0u);
    EXPECT_STREQ(_oamGetText(kOwnCode), "OWN_CODE");
}

TEST_F(OptionalPluginEntry, GetBoardStatusIsNotSupportedByDefault) {
    Add(moduleWithout("GetBoardStatus"));
    EXPECT_EQ(Status(), (Numbers{OAMERR_NOT_SUPPORTED_WARNING, 77, 0}));
    EXPECT_STREQ(_oamGetText(kOwnCode), "OWN_CODE");
}

TEST_F(OptionalPluginEntry, MayBeMissingLikeTheTwoOthers) {
    Add("recorder_minimal.bpi");
    EXPECT_EQ(Status(), (Numbers{OAMERR_NOT_SUPPORTED_WARNING, 77, 0}));
    EXPECT_EQ(_oamGetText(kOwnCode), nullptr);
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "test", "not heard"), OAM_SUCCESS);
    EXPECT_EQ(_oamStartBoard(board_.c_str(), OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines(), ElementsAre("rec.bpi StartBoard(Card 0)"));
}

}  // namespace

}  // namespace oam::test
