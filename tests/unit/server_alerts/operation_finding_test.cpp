#include "operations_test.h"

namespace oam::server {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(Operations, AreListedNewestFirst) {
    const std::string first = Begin("Board 1");
    const std::string second = Begin("Board 2");
    const std::string third = Begin("Board 1");
    TellStarted("Board 1");
    EXPECT_THAT(Listed(), ElementsAre(third, second, first));
    EXPECT_THAT(Listed(true), ElementsAre(third, second));
    EXPECT_THAT(Listed(false, "BOARD 1"), ElementsAre(third, first));
    EXPECT_THAT(Listed(true, "Board 1"), ElementsAre(third));
    EXPECT_THAT(Listed(true, "Board"), IsEmpty());
}

TEST_F(Operations, TheOneThatEndedFirstIsForgottenFirst) {
    const std::string slow = Begin("Slow");
    std::vector<std::string> quick;
    for (int i = 0; i < 3; ++i) {
        quick.push_back(Begin("Board 1"));
        TellStarted("Board 1");
    }
    TellStarted("Slow");
    EXPECT_EQ(StateOf(slow), OperationState::kDone) << "the oldest, but it ended last";
    EXPECT_THAT(Listed(), ElementsAre(quick[2], quick[1], slow));
    EXPECT_EQ(StateOf(quick[0]), OperationState::kUnknown);
}

TEST_F(Operations, ThatRunAreNotForgotten) {
    for (int i = 0; i < 10; ++i) Begin("Board 1");
    EXPECT_EQ(Listed(true).size(), 10u);
}

TEST_F(Operations, ThatNeverGetAnOutcomeAreGivenUpInTheEnd) {
    const std::string first = Begin("Board 1");
    int calls = 0;
    book_.Wait(first, [&](const OperationRecord& record) {
        ++calls;
        EXPECT_EQ(record.state, OperationState::kUnknown);
    });
    for (std::size_t i = 1; i < OperationBook::kMostRunning; ++i) Begin("Board 1");
    EXPECT_EQ(StateOf(first), OperationState::kRunning);
    EXPECT_EQ(calls, 0);
    Begin("Board 1");
    EXPECT_EQ(StateOf(first), OperationState::kUnknown);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(Listed(true).size(), OperationBook::kMostRunning);
}

TEST_F(Operations, AnIdentityThatWasNeverGivenIsNotFound) {
    Begin("Board 1");
    for (const char* id : {"",
                           "-",
                           "7",
                           "7-",
                           "-1",
                           "7-0",
                           "0-1",
                           "7-2",
                           "8-1",
                           "07-1",
                           "7-01",
                           "7-1 ",
                           " 7-1",
                           "7-1-1",
                           "7--1",
                           "+7-1",
                           "7-1x",
                           "a-b",
                           "99999999999999999999-1",
                           "7-99999999999999999999"})
        EXPECT_FALSE(book_.Find(id)) << '"' << id << '"';
    EXPECT_TRUE(book_.Find("7-1"));
}

TEST_F(Operations, OfAnEarlierStartAreUnknown) {
    const auto record = book_.Find("6-12");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->state, OperationState::kUnknown);
    EXPECT_EQ(record->id, "6-12");
}

TEST_F(Operations, AreUnknownWhenTheServiceStopsUnderThem) {
    const std::string done = Begin("Board 2");
    TellStarted("Board 2");
    const std::string first = Begin("Board 1");
    const std::string second = Begin("Board 3");
    book_.GiveUpRunning("the service was restarted");
    EXPECT_EQ(StateOf(done), OperationState::kDone);
    for (const std::string& id : {first, second}) {
        EXPECT_EQ(StateOf(id), OperationState::kUnknown);
        EXPECT_EQ(book_.Find(id)->text, "the service was restarted");
        EXPECT_FALSE(book_.Find(id)->ended) << "nobody knows when";
    }
    EXPECT_THAT(Listed(true), IsEmpty());
    EXPECT_EQ(TellStarted("Board 1"), "");
}

}  // namespace
}  // namespace oam::server
