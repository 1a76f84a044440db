#include "store/store_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <new>

#include "daemon_parts.h"
#include "support/installation.h"
#include "unit/sim/waiting.h"

namespace oam::server {
namespace {

using test::Installation;
using test::Layout;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::chrono::milliseconds kPause{1};
constexpr std::chrono::hours kLong{1};

// Does what the test says, and counts.
class ScriptedJob : public StoreJob {
  public:
    explicit ScriptedJob(std::function<bool(int turn, BookConnection&)> script)
        : script_(std::move(script)) {}
    bool Write(BookConnection& book) override { return script_(++turns_, book); }
    int Turns() const { return turns_; }
    bool AwaitTurns(int turns) const {
        return sim::becomesTrue([&] { return turns_ >= turns; });
    }

  private:
    const std::function<bool(int, BookConnection&)> script_;
    std::atomic<int> turns_{0};
};

bool nothing(int, BookConnection&) { return false; }

class WriterThread : public testing::Test {
  protected:
    std::unique_ptr<StoreWriter> Start(std::vector<StoreJob*> jobs) {
        return StartWithPause(kPause, std::move(jobs));
    }
    std::unique_ptr<StoreWriter> StartWithPause(std::chrono::milliseconds pause,
                                                std::vector<StoreJob*> jobs) {
        return std::make_unique<StoreWriter>(bell_, path_, std::move(jobs), complaints_.Listener(),
                                             pause);
    }

    Installation place_{Layout::kBare};
    const std::string path_ = place_.Path("oamd.db");
    Complaints complaints_;
    Bell bell_;
};

TEST_F(WriterThread, WritesOnceAtFirstAndThenWheneverItIsRung) {
    ScriptedJob job(nothing);
    const auto writer = Start({&job});
    ASSERT_TRUE(job.AwaitTurns(1));
    for (int turn = 2; turn < 20; ++turn) {
        bell_.Ring();
        ASSERT_TRUE(job.AwaitTurns(turn));
    }
}

TEST_F(WriterThread, SleepsWhileNobodyRings) {
    ScriptedJob first(nothing);
    ScriptedJob second(nothing);
    {
        const auto writer = Start({&first, &second});
        ASSERT_TRUE(second.AwaitTurns(1));
    }
    EXPECT_EQ(first.Turns(), 2) << "at the begin and at the end";
    EXPECT_EQ(second.Turns(), 2);
}

TEST_F(WriterThread, GoesOnWithoutARingWhileThereIsMore) {
    ScriptedJob job([](int turn, BookConnection&) { return turn < 10; });
    const auto writer = Start({&job});
    EXPECT_TRUE(job.AwaitTurns(10));
}

TEST_F(WriterThread, WritesAllThatThereIsAtTheEnd) {
    std::atomic<bool> isEnding{false};
    ScriptedJob job([&](int turn, BookConnection&) { return isEnding && turn < 50; });
    {
        const auto writer = Start({&job});
        ASSERT_TRUE(job.AwaitTurns(1));
        isEnding = true;
    }
    // The first round may see the end already; then there is one more.
    EXPECT_THAT(job.Turns(), testing::AnyOf(50, 51));
}

TEST_F(WriterThread, ComplainsOnceOfAFailureThatLastsAndOnceOfItsEnd) {
    std::atomic<bool> isFull{true};
    ScriptedJob job([&](int, BookConnection&) -> bool {
        if (isFull) throw StoreError("the disk is full");
        return false;
    });
    const auto writer = Start({&job});
    ASSERT_TRUE(job.AwaitTurns(20));
    EXPECT_THAT(complaints_.All(), testing::ElementsAre(HasSubstr("the disk is full")));
    isFull = false;
    ASSERT_TRUE(complaints_.Await("can be written again"));
    EXPECT_EQ(complaints_.All().size(), 2u);
    isFull = true;
    bell_.Ring();
    EXPECT_TRUE(sim::becomesTrue([&] { return complaints_.All().size() == 3; }))
        << "another failure is another complaint";
}

TEST_F(WriterThread, AFailureIsTriedAgainAfterAPauseWhateverRings) {
    std::atomic<bool> isFull{true};
    ScriptedJob job([&](int, BookConnection&) -> bool {
        if (isFull) throw StoreError("full");
        return false;
    });
    auto writer = StartWithPause(kLong, {&job});
    ASSERT_TRUE(complaints_.Await("full"));
    for (int i = 0; i < 1000; ++i) bell_.Ring();
    isFull = false;
    writer.reset();
    EXPECT_EQ(job.Turns(), 2) << "the end ends the pause, and has a try of its own";
    EXPECT_EQ(complaints_.Count("can be written again"), 1u);
}

TEST_F(WriterThread, AFailureAtTheEndDoesNotKeepItFromEnding) {
    ScriptedJob job([](int, BookConnection&) -> bool { throw StoreError("full"); });
    auto writer = StartWithPause(kLong, {&job});
    ASSERT_TRUE(complaints_.Await("full"));
    writer.reset();
    EXPECT_EQ(job.Turns(), 2);
    EXPECT_EQ(complaints_.All().size(), 1u);
}

TEST_F(WriterThread, AJobThatFailsDoesNotKeepTheOthersFromTheirs) {
    ScriptedJob failing([](int, BookConnection&) -> bool { throw StoreError("full"); });
    ScriptedJob other(nothing);
    const auto writer = Start({&failing, &other});
    EXPECT_TRUE(other.AwaitTurns(5));
}

TEST_F(WriterThread, WithoutMemoryItTriesAgain) {
    ScriptedJob job([](int turn, BookConnection&) -> bool {
        if (turn == 1) throw std::bad_alloc();
        return false;
    });
    const auto writer = Start({&job});
    ASSERT_TRUE(complaints_.Await("bad_alloc"));
    EXPECT_TRUE(complaints_.Await("can be written again"));
}

TEST_F(WriterThread, JobsShareAConnectionThatIsBegunAnewAfterAFailure) {
    std::vector<unsigned> openings;
    std::vector<Database*> databases;
    ScriptedJob first([&](int turn, BookConnection& book) {
        databases.push_back(&book.Open());
        openings.push_back(book.Openings());
        if (turn == 2) throw StoreError("once");
        return turn < 4;
    });
    ScriptedJob second([&](int, BookConnection& book) {
        databases.push_back(&book.Open());
        return false;
    });
    Start({&first, &second}).reset();
    ASSERT_GE(openings.size(), 4u);
    EXPECT_EQ(databases[0], databases[1]);
    EXPECT_EQ(openings[0], 1u);
    EXPECT_EQ(openings[1], 1u);
    EXPECT_EQ(openings[2], 2u);
    EXPECT_EQ(openings[3], 2u);
}

TEST_F(WriterThread, DoesNotOpenABookThatNobodyNeeds) {
    ScriptedJob job(nothing);
    Start({&job}).reset();
    EXPECT_FALSE(place_.Exists("oamd.db"));
    EXPECT_THAT(complaints_.All(), IsEmpty());
}

}  // namespace
}  // namespace oam::server
