// Calling what foreign code exports: arguments and results pass unchanged, exceptions do not.
#include "loading/object_entries.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

#include "base/foreign_frame.h"

namespace oam::test {
namespace {

std::string noted;

unsigned initEntry(const char* fileName) {
    noted = fileName;
    return 11;
}
unsigned exitEntry() { return 12; }
const char* textEntry(unsigned code) { return code == 5 ? "FIVE" : nullptr; }
unsigned alertEntry(const oam_msg_tag* message) { return message->code; }
unsigned openEntry(unsigned long handle, unsigned mode) {
    return static_cast<unsigned>(handle) * 10 + mode;
}
unsigned closeEntry(unsigned long handle) { return static_cast<unsigned>(handle); }
unsigned setEntry(unsigned long handle, const char* keyword, const char* value) {
    noted = std::to_string(handle) + keyword + "=" + value;
    return 13;
}
unsigned getEntry(unsigned long handle, const char* keyword, char* buffer, unsigned size) {
    noted = std::to_string(handle) + keyword + (buffer == nullptr ? " null " : " ") +
            std::to_string(size);
    return 14;
}
unsigned qualifierEntry(unsigned long handle, const char* keyword, const char* qualifier, char*,
                        unsigned size) {
    noted = std::to_string(handle) + keyword + "?" + qualifier + " " + std::to_string(size);
    return 15;
}

ObjectEntries Bound() {
    return {.init = &initEntry,
            .exit = &exitEntry,
            .getText = &textEntry,
            .alertReceive = &alertEntry,
            .openObject = &openEntry,
            .closeObject = &closeEntry,
            .setKeyword = &setEntry,
            .getKeyword = &getEntry,
            .getQualifier = &qualifierEntry};
}

TEST(ObjectEntries, PassArgumentsAndResultsUnchanged) {
    const ObjectEntries entries = Bound();
    oam_msg_tag message{};
    message.code = 77;
    char buffer[8];
    EXPECT_EQ(entries.Init("x.emc"), oam_result(11));
    EXPECT_EQ(noted, "x.emc");
    EXPECT_EQ(entries.Exit(), oam_result(12));
    EXPECT_STREQ(entries.GetText(5), "FIVE");
    EXPECT_EQ(entries.GetText(6), nullptr);
    EXPECT_EQ(entries.AlertReceive(&message), oam_result(77));
    EXPECT_EQ(entries.OpenObject(4, 3), oam_result(43));
    EXPECT_EQ(entries.CloseObject(9), oam_result(9));
    EXPECT_EQ(entries.SetKeyword(1, "Bus", "3"), oam_result(13));
    EXPECT_EQ(noted, "1Bus=3");
    EXPECT_EQ(entries.GetKeyword(2, "Bus", nullptr, 6), oam_result(14));
    EXPECT_EQ(noted, "2Bus null 6");
    EXPECT_EQ(entries.GetQualifier(3, "Bus", "Max", buffer, sizeof buffer), oam_result(15));
    EXPECT_EQ(noted, "3Bus?Max 8");
}

TEST(ObjectEntries, ModuleThatWasNeverBoundHasNothingToEnd) {
    EXPECT_EQ(ObjectEntries().Exit(), OAM_SUCCESS);
}

template <class... Parameters>
unsigned throwing(Parameters...) {
    throw std::runtime_error("thrown by a module");
}

template <class... Parameters>
unsigned throwingANumber(Parameters...) {
    throw 5;
}

const char* throwingText(unsigned) { throw std::runtime_error("thrown by a module"); }

TEST(ObjectEntries, TurnWhatIsThrownIntoAFailure) {
    const ObjectEntries entries{.init = &throwing,
                                .exit = &throwingANumber,
                                .getText = &throwingText,
                                .alertReceive = &throwing,
                                .openObject = &throwing,
                                .closeObject = &throwing,
                                .setKeyword = &throwing,
                                .getKeyword = &throwing,
                                .getQualifier = &throwing};
    EXPECT_EQ(entries.Init("x"), OAM_REASON_FAILED);
    EXPECT_EQ(entries.Exit(), OAM_REASON_FAILED);
    EXPECT_EQ(entries.GetText(1), nullptr);
    EXPECT_EQ(entries.AlertReceive(nullptr), OAM_REASON_FAILED);
    EXPECT_EQ(entries.OpenObject(1, 0), OAM_REASON_FAILED);
    EXPECT_EQ(entries.CloseObject(1), OAM_REASON_FAILED);
    EXPECT_EQ(entries.SetKeyword(1, "k", "v"), OAM_REASON_FAILED);
    EXPECT_EQ(entries.GetKeyword(1, "k", nullptr, 0), OAM_REASON_FAILED);
    EXPECT_EQ(entries.GetQualifier(1, "k", "q", nullptr, 0), OAM_REASON_FAILED);
}

// What the marks tell while an entry runs.
KorCallInside seen;

unsigned lookingEntry(unsigned long, unsigned) {
    for (unsigned mark = 0; mark < kKorMarks; ++mark)
        if (KorCallAt(mark, &seen)) return 1;
    return 2;
}

TEST(ObjectEntries, MarkEachCallWithItsModuleEntryAndObject) {
    ObjectEntries entries{.openObject = &lookingEntry};
    entries.mark = {KorMarkedModule("marked.emc"), "Board 3"};
    ASSERT_EQ(entries.OpenObject(1, 0), oam_result(1));
    EXPECT_STREQ(seen.module, "marked.emc");
    EXPECT_STREQ(seen.entry, "OpenObject");
    EXPECT_STREQ(seen.about, "Board 3");
    KorEntryUse use;
    ASSERT_TRUE(KorUseAt(entries.mark.module, kOpenObjectEntry.number, &use));
    EXPECT_EQ(use.calls, 1u);
    for (unsigned mark = 0; mark < kKorMarks; ++mark) EXPECT_FALSE(KorCallAt(mark, &seen));
}

TEST(ObjectEntries, LeaveNoMarkOfACallThatThrows) {
    const ObjectEntries entries{.openObject = &throwing};
    EXPECT_EQ(entries.OpenObject(1, 0), OAM_REASON_FAILED);
    for (unsigned mark = 0; mark < kKorMarks; ++mark) EXPECT_FALSE(KorCallAt(mark, &seen));
}

// A module whose entries do what a test says, most of them by entering themselves again.
std::function<unsigned()> inside;
int entered = 0;

unsigned enteringAgain() {
    ++entered;
    return inside();
}

unsigned Enter() { return ObjectEntries{.exit = &enteringAgain}.Exit(); }

TEST(NestedEntries, EndAtADepthAndTheRefusalComesBack) {
    entered = 0;
    inside = &Enter;
    EXPECT_EQ(Enter(), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(entered, kDeepestEntry);
}

TEST(NestedEntries, EndWhereOneLeadsToSeveral) {
    entered = 0;
    inside = [] {
        (void)Enter();
        return Enter();
    };
    EXPECT_EQ(Enter(), OAMERR_ACCESS_DENIED);
    EXPECT_LE(entered, 3 + kMostInnerEntries);
}

TEST(NestedEntries, AreCountedAnewWhenTheyAreOver) {
    inside = &Enter;
    EXPECT_EQ(Enter(), OAMERR_ACCESS_DENIED);
    inside = [] {
        inside = [] { return 0u; };
        return Enter();
    };
    EXPECT_EQ(Enter(), OAM_SUCCESS);
}

TEST(NestedEntries, MayBeAnyNumberInsideOneThatTakesItsTime) {
    inside = [] {
        inside = [] {
            inside = [] { return 0u; };
            return Enter();
        };
        const auto second = inside;
        for (int i = 0; i < 2 * kMostInnerEntries; ++i) {
            inside = second;
            if (unsigned failed = Enter()) return failed;
        }
        return 0u;
    };
    EXPECT_EQ(Enter(), OAM_SUCCESS);
}

TEST(NestedEntries, CountForEachThreadAlone) {
    inside = [] {
        if (entered < kDeepestEntry) return Enter();
        inside = [] { return 0u; };
        unsigned elsewhere = 1;
        std::thread([&] { elsewhere = Enter(); }).join();
        return elsewhere;
    };
    entered = 0;
    EXPECT_EQ(Enter(), OAM_SUCCESS);
}

const char* textAgain(unsigned code) {
    ++entered;
    return ObjectEntries{.getText = &textAgain}.GetText(code);
}

TEST(NestedEntries, HaveNoTextWhereTheyEnd) {
    entered = 0;
    EXPECT_EQ(textAgain(5), nullptr);
    EXPECT_EQ(entered, 1 + kDeepestEntry);
}

}  // namespace
}  // namespace oam::test
