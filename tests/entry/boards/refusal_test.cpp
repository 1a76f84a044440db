// A board lets one operation through at a time: what every other request is told meanwhile.
#include "operations.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kBoard = "Board A";

struct Refusal {
    Operation running;
    Operation requested;
    const char* text;
};

std::ostream& operator<<(std::ostream& out, const Refusal& refusal) {
    return out << refusal.requested << " during " << refusal.running;
}

const Refusal kRefusals[] = {
    {kStart, kStart, "Board is currently being started."},
    {kStart, kStop,
     "Board is currently being started. Wait for the OAMEVN_STARTBOARD_DONE before stopping it"},
    {kStart, kTest,
     "Board is currently being started. Wait for the OAMEVN_STARTBOARD_DONE before testing it"},
    {kStop, kStart,
     "Board is currently being stopped. Wait for the OAMEVN_STOPBOARD_DONE before restarting it"},
    {kStop, kStop, "Board is currently being stopped."},
    {kStop, kTest,
     "Board is currently being stopped. Wait for the OAMEVN_STOPBOARD_DONE before testing it"},
    {kTest, kStart,
     "Board is currently being tested. Wait for the OAMEVN_TESTBOARD_DONE before starting it"},
    {kTest, kStop,
     "Board is currently being tested. Wait for the OAMEVN_TESTBOARD_DONE before stopping it"},
    {kTest, kTest, "Board is currently being tested."},
};

class RefusedOperation : public OperationTest, public testing::WithParamInterface<Refusal> {
  protected:
    void SetUp() override {
        OperationTest::SetUp();
        Configure(kBoard);
        StartQuietly();
        HoldBack(GetParam().running, kBoard, latch_);
        alerts.Clear();
        recorder.Clear();
    }
    void TearDown() override {
        LetGo(GetParam().running, kBoard, latch_);
        OperationTest::TearDown();
    }
    Said Refused() const { return {GetParam().requested.done, 2, kBoard, GetParam().text}; }

    Latch latch_;
};

TEST_P(RefusedOperation, IsToldInItsOwnOutcome) {
    ASSERT_EQ(GetParam().requested.request(kBoard, 0), OAM_SUCCESS);
    ASSERT_TRUE(alerts.WaitForCode(GetParam().requested.done));
    EXPECT_THAT(alerts.Heard(), ElementsAre(Refused()));
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_P(RefusedOperation, LeavesTheOneInProgressAlone) {
    for (size_t times = 1; times <= 3; ++times) {
        ASSERT_EQ(GetParam().requested.request(kBoard, 0), OAM_SUCCESS);
        ASSERT_TRUE(alerts.WaitForCode(GetParam().requested.done, times));
    }
    EXPECT_THAT(alerts.Heard(), ElementsAre(Refused(), Refused(), Refused()));
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_P(RefusedOperation, IsToldForARequestOfAllBoardsToo) {
    ASSERT_EQ(GetParam().requested.request(nullptr, 0), OAM_SUCCESS);
    ASSERT_TRUE(alerts.WaitForCode(GetParam().requested.done));
    EXPECT_THAT(alerts.Heard(), ElementsAre(Refused()));
}

INSTANTIATE_TEST_SUITE_P(Each, RefusedOperation, testing::ValuesIn(kRefusals), [](const auto& row) {
    return std::string(row.param.requested.name) + "During" + row.param.running.name;
});

class RefusedSynchronized : public OperationTest, public testing::WithParamInterface<Operation> {};

TEST_P(RefusedSynchronized, IsToldBeforeTheCallReturns) {
    Configure(kBoard);
    StartQuietly();
    Latch latch;
    HoldBack(kTest, kBoard, latch);
    EXPECT_EQ(GetParam().request(kBoard, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(Outcomes(GetParam(), kBoard).size(), 1u);
    EXPECT_EQ(Outcomes(GetParam(), kBoard).at(0).severity, 2u);
    LetGo(kTest, kBoard, latch);
}

INSTANTIATE_TEST_SUITE_P(Each, RefusedSynchronized, testing::Values(kStart, kStop),
                         [](const auto& row) { return row.param.name; });

}  // namespace

}  // namespace oam::test
