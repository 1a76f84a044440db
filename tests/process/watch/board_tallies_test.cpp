#include "board_tallies.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "oam/codes.h"
#include "oam/message.h"

namespace oam::watch {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr FailureLimit kNoLimit{};

HeardAlert notice(std::string_view source, unsigned int code = OAMEVN_ALERT,
                  std::string_view text = "text") {
    return {.code = code, .severity = OAM_INFORMATION, .source = source, .text = text};
}

HeardAlert outcome(std::string_view source, unsigned int severity = OAM_INFORMATION) {
    return {
        .code = OAMEVN_STARTBOARD_DONE, .severity = severity, .source = source, .text = " text \n"};
}

std::vector<std::string> names(const BoardTallies& tallies) {
    std::vector<std::string> found;
    for (const auto& known : tallies.List()) found.push_back(known.name);
    return found;
}

// By the name as it was first heard.
BoardTally tallyOf(const BoardTallies& tallies, const std::string& name) {
    for (const auto& known : tallies.List()) {
        if (known.name == name) return tallies.Get(known.id).value();
    }
    ADD_FAILURE() << name << " is not known";
    return {};
}

class Tallies : public ::testing::Test {
  protected:
    void Hear(const HeardAlert& alert) { EXPECT_FALSE(tallies_.Hear(alert, kNoLimit)); }

    // Sources "s0", "s1", ... up to the most that are kept.
    void Fill() {
        for (std::size_t i = 0; i < BoardTallies::kMostSources; ++i) {
            Hear(notice("s" + std::to_string(i)));
        }
    }

    BoardTallies tallies_;
};

TEST_F(Tallies, AreSortedByNameWithoutRegardToCase) {
    for (const char* source : {"b", "C", "a", "B"}) Hear(notice(source));
    EXPECT_THAT(names(tallies_), ElementsAre("a", "b", "C"));
    EXPECT_EQ(tallyOf(tallies_, "b").informations, 2u);
}

TEST_F(Tallies, KeepTheTextOfAnOutcomeWithoutItsEnds) {
    Hear(outcome("a", OAM_WARNING));
    const auto tally = tallyOf(tallies_, "a");
    EXPECT_EQ(tally.starts.failed, 1u);
    ASSERT_TRUE(tally.last);
    EXPECT_EQ(tally.last->text, "text");
    EXPECT_EQ(tally.last->severity, static_cast<unsigned>(OAM_WARNING));
}

TEST_F(Tallies, KeepNoMoreSourcesThanTheirLimit) {
    Fill();
    Hear(notice("one more"));
    EXPECT_THAT(tallies_.List(), SizeIs(BoardTallies::kMostSources));
    EXPECT_THAT(names(tallies_), ::testing::Contains("one more"));
}

TEST_F(Tallies, LetTheLongestSilentSourceGoFirst) {
    Fill();
    Hear(notice("s0"));
    Hear(notice("one more"));
    EXPECT_THAT(names(tallies_), ::testing::Contains("s0"));
    EXPECT_THAT(names(tallies_), ::testing::Not(::testing::Contains("s1")));
}

TEST_F(Tallies, LetBoardsGoLast) {
    Hear(outcome("by its outcome"));
    Hear(notice("by the service"));
    tallies_.Confirm({tallies_.List().back().id, 4711});
    Fill();
    EXPECT_THAT(names(tallies_), ::testing::IsSupersetOf({"by its outcome", "by the service"}));
    EXPECT_THAT(names(tallies_), ::testing::Not(::testing::Contains("s0")));
}

TEST_F(Tallies, AreKnownByTheirIdAcrossARename) {
    Hear(outcome("old"));
    const auto id = tallies_.List().front().id;
    Hear(notice("New", OAMEVN_RENAMED, "OLD"));
    EXPECT_THAT(names(tallies_), ElementsAre("New"));
    EXPECT_EQ(tallies_.Get(id).value().name, "New");
    EXPECT_EQ(tallies_.Get(id).value().starts.succeeded, 1u);
}

TEST_F(Tallies, OfARenamedBoardReplaceWhatWasKnownUnderItsNewName) {
    Hear(outcome("old"));
    Hear(outcome("new", OAM_ERROR));
    Hear(notice("new", OAMEVN_RENAMED, "old"));
    EXPECT_EQ(tallyOf(tallies_, "new").starts.succeeded, 1u);
    EXPECT_EQ(tallyOf(tallies_, "new").starts.failed, 0u);
}

TEST_F(Tallies, TakeARenameOfAnUnknownBoardForANotice) {
    Hear(notice("new", OAMEVN_RENAMED, "never heard of"));
    EXPECT_EQ(tallyOf(tallies_, "new").informations, 1u);
}

TEST_F(Tallies, OfADeletedBoardAreGone) {
    Hear(outcome("a"));
    const auto id = tallies_.List().front().id;
    Hear(notice("A", OAMEVN_DELETED));
    Hear(notice("never heard of", OAMEVN_DELETED));
    EXPECT_THAT(tallies_.List(), IsEmpty());
    EXPECT_FALSE(tallies_.Get(id));
}

TEST_F(Tallies, AreNeverGivenAnIdTwice) {
    Hear(outcome("a"));
    const auto id = tallies_.List().front().id;
    tallies_.Reset();
    Hear(outcome("a"));
    EXPECT_NE(tallies_.List().front().id, id);
    EXPECT_FALSE(tallies_.Get(id));
}

TEST_F(Tallies, TellTheFailureThatCrossesTheLimit) {
    const FailureLimit two = {.failures = 2, .window = std::chrono::seconds(60)};
    EXPECT_FALSE(tallies_.Hear(outcome("a", OAM_ERROR), two));
    EXPECT_FALSE(tallies_.Hear(outcome("a"), two));
    EXPECT_TRUE(tallies_.Hear(outcome("a", OAM_ERROR), two));
}

TEST_F(Tallies, LeaveOutNamesThatNoObjectHas) {
    Hear(notice(""));
    Hear(notice(std::string(128, 'x')));
    EXPECT_THAT(tallies_.List(), IsEmpty());
    Hear(notice(std::string(127, 'x')));
    EXPECT_THAT(tallies_.List(), SizeIs(1));
}

}  // namespace
}  // namespace oam::watch
