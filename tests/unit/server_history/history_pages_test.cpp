#include "history/history_pages.h"

#include <gtest/gtest.h>

#include "book_test.h"
#include "matchers.h"

namespace oam::server::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Pages : public BookTest {
  protected:
    // "2 A", ...
    std::vector<std::string> Texts(const HistoryQuery& query) {
        std::vector<std::string> texts;
        for (const HistoryEntry& entry : List(query))
            texts.push_back(std::to_string(entry.generation) + ' ' + entry.object);
        return texts;
    }
};

}  // namespace

TEST_F(Pages, TellWhoDidWhatAndWhen) {
    const auto before = std::chrono::system_clock::now() - std::chrono::milliseconds(1);
    Write({Changed("A", "7")}, {"ann", "change", "3-17"});
    const auto entries = List({});
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].generation, 1u);
    EXPECT_GE(entries[0].time, before);
    EXPECT_LE(entries[0].time, std::chrono::system_clock::now());
    EXPECT_EQ(entries[0].occasion.user, "ann");
    EXPECT_EQ(entries[0].occasion.action, "change");
    EXPECT_EQ(entries[0].occasion.operation, "3-17");
    EXPECT_EQ(entries[0].object, "A");
    EXPECT_THAT(entries[0].changes, ElementsAre(test::Changed("Number", "0", "7")));
}

TEST_F(Pages, TellWhatHappenedWhenNobodySaidIt) {
    Write({Created("A"), Changed("B", "1"), Deleted("C")}, {"service", "", ""});
    std::vector<std::string> actions;
    for (const HistoryEntry& entry : List({})) actions.push_back(entry.occasion.action);
    EXPECT_THAT(actions, ElementsAre("delete", "change", "create"));
}

TEST_F(Pages, AreNewestFirstAndLimited) {
    for (const char* object : {"A", "B", "C"}) Write({Created(object)});
    EXPECT_THAT(Texts({}), ElementsAre("3 C", "2 B", "1 A"));
    EXPECT_THAT(Texts({.limit = 2}), ElementsAre("3 C", "2 B"));
    EXPECT_THAT(Texts({.limit = 0}), IsEmpty());
}

TEST_F(Pages, GoOnBeforeAGeneration) {
    for (const char* object : {"A", "B", "C"}) Write({Created(object)});
    EXPECT_THAT(Texts({.beforeGeneration = 3, .limit = 1}), ElementsAre("2 B"));
    EXPECT_THAT(Texts({.beforeGeneration = 1}), IsEmpty());
    EXPECT_THAT(Texts({.beforeGeneration = ~std::uint64_t{0}, .limit = 1}), ElementsAre("3 C"));
}

TEST_F(Pages, GoOnInTheMiddleOfAGeneration) {
    Write({Created("X")});
    Write({Created("A"), Created("B"), Created("C")});
    const auto page = List({.limit = 2});
    ASSERT_EQ(page.size(), 2u);
    EXPECT_THAT(Texts({.beforeNumber = page.back().number}), ElementsAre("2 A", "1 X"));
}

TEST_F(Pages, ShowOneObjectByAnySpelling) {
    Write({Created("A"), Created("B")});
    Write({Changed("A", "1")});
    EXPECT_THAT(Texts({.object = "a"}), ElementsAre("2 A", "1 A"));
    EXPECT_THAT(Texts({.object = "C"}), IsEmpty());
}

TEST_F(Pages, ShowARenamingUnderBothNames) {
    Write({Created("A")});
    ObjectChange renamed = Changed("B", "1");
    renamed.previous = "A";
    Write({renamed});
    EXPECT_THAT(Texts({.object = "A"}), ElementsAre("2 B", "1 A"));
    EXPECT_THAT(Texts({.object = "B"}), ElementsAre("2 B"));
}

}  // namespace oam::server::test
