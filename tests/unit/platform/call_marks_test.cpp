// Marks of calls: what is under way is seen by everybody, what is over is counted, and no mark is
// half of one call and half of another.
#include "korcore/call_marks.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr KorEntryName kStart = {12, "StartBoard"};
constexpr KorEntryName kStatus = {16, "GetBoardStatus"};

std::vector<KorCallInside> inside() {
    std::vector<KorCallInside> calls;
    KorCallInside call;
    for (unsigned mark = 0; mark < kKorMarks; ++mark)
        if (KorCallAt(mark, &call)) calls.push_back(call);
    return calls;
}

KorEntryUse useOf(unsigned module, KorEntryName entry) {
    KorEntryUse use{};
    (void)KorUseAt(module, entry.number, &use);
    return use;
}

TEST(CallMarks, TellWhoIsInsideWhichEntryAboutWhat) {
    const unsigned module = KorMarkedModule("tell.bpi");
    {
        const KorCallMark mark(module, kStart, "Board 3");
        const auto calls = inside();
        ASSERT_EQ(calls.size(), 1u);
        EXPECT_STREQ(calls[0].module, "tell.bpi");
        EXPECT_STREQ(calls[0].entry, "StartBoard");
        EXPECT_STREQ(calls[0].about, "Board 3");
        EXPECT_EQ(calls[0].thread, gettid());
        EXPECT_LE(calls[0].since, KorMarkTime());
    }
    EXPECT_TRUE(inside().empty());
}

TEST(CallMarks, OfCallsInsideCallsAreAllThere) {
    const unsigned module = KorMarkedModule("nest.bpi");
    const KorCallMark outer(module, kStart, "Outer");
    {
        const KorCallMark inner(module, kStatus, nullptr);
        EXPECT_EQ(inside().size(), 2u);
    }
    const auto calls = inside();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_STREQ(calls[0].about, "Outer");
}

TEST(CallMarks, CountCallsAndTheTimeOfThoseThatLast) {
    const unsigned module = KorMarkedModule("count.bpi");
    KorEntryUse none;
    EXPECT_FALSE(KorUseAt(module, kStart.number, &none));
    for (int i = 0; i < 5; ++i) {
        const KorCallMark mark(module, kStart, nullptr);
        EXPECT_EQ(useOf(module, kStart).calls, static_cast<uint64_t>(i + 1));
    }
    const uint64_t before = useOf(module, kStart).nanoseconds;
    constexpr uint64_t kLong = 50000000;
    {
        const KorCallMark mark(module, kStart, nullptr);
        const uint64_t begin = KorMarkTime();
        while (KorMarkTime() < begin + kLong) std::this_thread::yield();
    }
    const KorEntryUse use = useOf(module, kStart);
    EXPECT_STREQ(use.module, "count.bpi");
    EXPECT_STREQ(use.entry, "StartBoard");
    EXPECT_GE(use.nanoseconds - before, kLong);
    EXPECT_LT(use.nanoseconds - before, 1000 * kLong);
    EXPECT_FALSE(KorUseAt(module, kStatus.number, &none));
}

TEST(CallMarks, KnowAModuleByItsFileName) {
    const unsigned module = KorMarkedModule("same.bpi");
    EXPECT_NE(module, 0u);
    EXPECT_EQ(KorMarkedModule("same.bpi"), module);
    EXPECT_NE(KorMarkedModule("other.bpi"), module);
    EXPECT_NE(KorMarkedModule(std::string(300, 'x').c_str()), 0u);
}

TEST(CallMarks, CutWhatIsTooLong) {
    const KorCallMark mark(KorMarkedModule("cut.bpi"), kStart, std::string(300, 'b').c_str());
    ASSERT_EQ(inside().size(), 1u);
    EXPECT_EQ(inside()[0].about, std::string(kKorMarkTextSize - 1, 'b'));
}

TEST(CallMarks, OfEveryLengthAreWhole) {
    const unsigned module = KorMarkedModule("length.bpi");
    for (size_t length = 0; length < kKorMarkTextSize; ++length) {
        const std::string about(length, 'a');
        const KorCallMark mark(module, kStart, about.c_str());
        ASSERT_EQ(inside().size(), 1u);
        EXPECT_EQ(inside()[0].about, about);
    }
}

TEST(CallMarks, OutsideTheirTableAreNone) {
    const unsigned module = KorMarkedModule("outside.bpi");
    KorCallInside call;
    KorEntryUse use{};
    EXPECT_FALSE(KorCallAt(kKorMarks, &call));
    EXPECT_FALSE(KorUseAt(module, kKorMarkedEntries, &use));
    EXPECT_FALSE(KorUseAt(kKorMarkedModules, kStatus.number, &use));
    EXPECT_FALSE(KorUseAt(module, kStatus.number, &use)) << "nobody has called it yet";
}

TEST(CallMarks, OfAModuleThatHasNoNumberAreTheOthers) {
    const KorCallMark mark(kKorMarkedModules, kStart, "Board 3");
    ASSERT_EQ(inside().size(), 1u);
    EXPECT_STREQ(inside()[0].module, "");
}

TEST(CallMarks, MoreThanThereIsRoomForAreCountedAllTheSame) {
    const unsigned module = KorMarkedModule("many.bpi");
    std::vector<std::optional<KorCallMark>> marks(kKorMarks + 10);
    for (auto& mark : marks) mark.emplace(module, kStart, nullptr);
    EXPECT_EQ(inside().size(), kKorMarks);
    EXPECT_EQ(useOf(module, kStart).calls, marks.size());
    marks.clear();
    EXPECT_TRUE(inside().empty());
    const KorCallMark again(module, kStart, "again");
    EXPECT_EQ(inside().size(), 1u);
}

// Each call is about one letter, as often as goes with it.
TEST(CallMarks, AreNeverReadHalf) {
    constexpr size_t kKinds = 4;
    std::vector<unsigned> modules;
    std::vector<std::string> abouts;
    for (size_t i = 0; i < kKinds; ++i) {
        abouts.emplace_back(20 + 30 * i, static_cast<char>('a' + i));
        modules.push_back(KorMarkedModule(abouts[i].c_str()));
    }
    // One mark is left, for which the callers are rivals.
    std::vector<std::optional<KorCallMark>> taken(kKorMarks - 1);
    for (auto& mark : taken) mark.emplace(0, kStatus, nullptr);
    unsigned left = 0;
    for (KorCallInside call; KorCallAt(left, &call);) ++left;
    std::atomic<bool> isOver{false};
    std::vector<std::thread> callers;
    for (int i = 0; i < 2; ++i)
        callers.emplace_back([&] {
            for (size_t kind = 0; !isOver; kind = (kind + 1) % kKinds)
                const KorCallMark mark(modules[kind], kStart, abouts[kind].c_str());
        });
    int halves = 0;
    for (int seen = 0; seen < 200000;) {
        KorCallInside call;
        if (!KorCallAt(left, &call)) continue;
        ++seen;
        if (std::strcmp(call.about, call.module) != 0) ++halves;
    }
    isOver = true;
    for (std::thread& caller : callers) caller.join();
    taken.clear();
    EXPECT_EQ(halves, 0);
    EXPECT_TRUE(inside().empty());
}

// The last of the file: it fills the table for good.
TEST(CallMarksTable, NamesThatItHasNoRoomForAreTheOthers) {
    KorEntryUse before{};
    (void)KorUseAt(0, kStatus.number, &before);
    unsigned number = 0;
    for (unsigned i = 0; i < kKorMarkedModules; ++i)
        number = KorMarkedModule(("fill" + std::to_string(i)).c_str());
    EXPECT_EQ(number, 0u);
    {
        const KorCallMark mark(number, kStatus, "Board 3");
        ASSERT_EQ(inside().size(), 1u);
        EXPECT_STREQ(inside()[0].module, "");
        EXPECT_STREQ(inside()[0].about, "Board 3");
    }
    EXPECT_EQ(useOf(0, kStatus).calls, before.calls + 1);
}

}  // namespace
