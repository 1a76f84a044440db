// The three running flags: what a module may ask of the service while it starts and stops. The
// library's own flag is up last and down first, board communication's lies in between, and the
// database runs around both.
#include "operations.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;

constexpr const char* kBoard = "Board A";

// What the service answers at one moment.
struct Moment {
    unsigned query = 0;     // a board query: the library's flag
    unsigned request = 0;   // a start of an unknown board: board communication's
    unsigned database = 0;  // the first object's name: the database's
    bool operator==(const Moment&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Moment& moment) {
    return out << std::hex << moment.query << "/" << moment.request << "/" << moment.database
               << std::dec;
}

Moment now() {
    char name[128];
    return {NumberOf(kBoard).code, _oamStartBoard("no such board", OAM_SYNCHRONIZED),
            _oamDbEnumObjects(0, name, sizeof name)};
}

constexpr unsigned kDown = OAMERR_SERVER_NOT_RUNNING;
constexpr unsigned kUnknownBoard = OAMERR_NOT_FOUND;
constexpr Moment kStopped = {kDown, kDown, kDown};
constexpr Moment kDatabaseOnly = {kDown, kDown, OAM_SUCCESS};
constexpr Moment kBoardsToo = {kDown, kUnknownBoard, OAM_SUCCESS};
constexpr Moment kRunning = {OAM_SUCCESS, kUnknownBoard, OAM_SUCCESS};

class RunningFlags : public OperationTest {
  protected:
    void SetUp() override {
        OperationTest::SetUp();
        Configure(kBoard, {{"AutoStop", "Yes"}});
        Settings({{"AutoStopEnabled", "Yes"}});
    }
};

TEST_F(RunningFlags, RiseOneAfterAnotherAndFallInReverse) {
    std::vector<Moment> seen;
    const auto look = [&seen] { seen.push_back(now()); };
    Script([&](ModuleScript& script) {
        script.init = [&](const char*) {
            look();
            return 0u;
        };
        script.stopBoard = [&](const char*) {
            look();
            return 0u;
        };
        script.exit = [&] {
            look();
            return 0u;
        };
    });
    AddComponent("part.emc", [&](ModuleScript& script) {
        script.init = [&](const char*) {
            look();
            return 0u;
        };
        script.exit = [&] {
            look();
            return 0u;
        };
    });
    look();
    Start();
    look();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    look();
    EXPECT_THAT(seen, ElementsAre(kStopped, kDatabaseOnly, kDatabaseOnly, kRunning, kBoardsToo,
                                  kDatabaseOnly, kDatabaseOnly, kStopped));
}

TEST_F(RunningFlags, OfBoardsIsUpWhenTheLastStageIsConfirmed) {
    std::vector<Moment> seen;
    bool lastStage = false;
    alerts.AnswerWith([&](const Alert& alert) {
        if (alert.client != kServer) return 0u;
        if (alert.text.find("Plug-in Components") != std::string::npos) lastStage = true;
        if (lastStage && alert.text == "\t\t\t\t\tDONE") seen.push_back(now());
        return 0u;
    });
    Start();
    EXPECT_THAT(seen, ElementsAre(kBoardsToo));
}

TEST_F(RunningFlags, LetABoardBeStartedBeforeTheServiceRuns) {
    alerts.AnswerWith([&](const Alert& alert) {
        if (alert.client == kServer && alert.source == "DllMain") {
            (void)_oamStartBoard(kBoard, OAM_SYNCHRONIZED);
        }
        return 0u;
    });
    Start();
    alerts.AnswerWith(nullptr);
    EXPECT_THAT(recorder.Lines({"StartBoard"}), ElementsAre("rec.bpi StartBoard(Board A)"));
}

// An import ends board communication and starts it again, with every board stopped before.
TEST_F(RunningFlags, OfBoardsFallsAndRisesInAnImport) {
    Configure("Board B");
    StartQuietly();
    const std::string file = home.Path("all.xml");
    EXPECT_EQ(_oamConfigExport(file.c_str()), OAM_SUCCESS);
    EXPECT_EQ(_oamDeleteBoard("Board B"), OAM_SUCCESS);
    EXPECT_EQ(CreateBoard(kProduct), "Card 0");
    recorder.Clear();
    EXPECT_EQ(_oamConfigImport(file.c_str()), OAM_SUCCESS);
    EXPECT_THAT(
        recorder.Lines({"StopBoard", "Exit", "Init"}),
        ElementsAre("rec.bpi StopBoard(Board A)", "rec.bpi StopBoard(Card 0)",
                    "rec.bpi StopBoard(Board A)", "rec.bpi Exit()", "rec.bpi Init(rec.bpi)"));
    EXPECT_THAT(BoardNames(), ElementsAre("Board A", "Board B"));
    EXPECT_EQ(_oamStartBoard("Board B", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(Outcomes(kStart, "Board B").size(), 1u);
}

}  // namespace

}  // namespace oam::test
