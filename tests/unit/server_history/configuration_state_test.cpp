#include "history/configuration_state.h"

#include <gtest/gtest.h>

#include "book_test.h"
#include "matchers.h"

namespace oam::server::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class States : public BookTest {
  protected:
    States() {
        Write({Created("b"), Created("C")});  // 1
        Write({Changed("C", "2")});
        Write({Created("A"), Deleted("b")});
        Write({Created("B")});  // 4
    }
    std::vector<std::string> Differences(Generation from, Generation to,
                                         const std::string& object = {}) {
        return TextsOf(CompareStates(database, from, to, object));
    }
};

}  // namespace

TEST_F(States, AreThoseOfEveryGeneration) {
    EXPECT_THAT(State(0), IsEmpty());
    EXPECT_THAT(State(1), ElementsAre("b", "C"));
    EXPECT_THAT(State(2), ElementsAre("b", "C=2"));
    EXPECT_THAT(State(3), ElementsAre("A", "C=2"));
    EXPECT_THAT(State(4), ElementsAre("A", "B", "C=2"));
}

TEST_F(States, HaveTheBytesOfEachObject) {
    EXPECT_EQ(ReadVersion(database, "c", 1)->bytes, BoardFile("C"));
    EXPECT_EQ(ReadVersion(database, "C", 4)->bytes, BoardFile("C", {{"Number", "2"}}));
    EXPECT_EQ(ReadVersion(database, "B", 1)->object, "b");
    EXPECT_FALSE(ReadVersion(database, "B", 3));
    EXPECT_FALSE(ReadVersion(database, "X", 4));
    EXPECT_FALSE(ReadVersion(database, "C", 0));
}

TEST_F(States, AreCompared) {
    EXPECT_THAT(Differences(1, 2), ElementsAre("changed C"));
    EXPECT_THAT(Differences(1, 3), ElementsAre("created A", "deleted b", "changed C"));
    EXPECT_THAT(Differences(0, 1), ElementsAre("created b", "created C"));
    EXPECT_THAT(Differences(2, 2), IsEmpty());
}

TEST_F(States, AreComparedBackwards) {
    EXPECT_THAT(Differences(3, 1), ElementsAre("deleted A", "created b", "changed C"));
    const auto found = CompareStates(database, 2, 1, "C");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_THAT(found[0].changes, ElementsAre(test::Changed("Number", "2", std::nullopt)));
}

TEST_F(States, AreComparedForOneObject) {
    EXPECT_THAT(Differences(1, 3, "c"), ElementsAre("changed C"));
    EXPECT_THAT(Differences(1, 3, "A"), ElementsAre("created A"));
    EXPECT_THAT(Differences(1, 3, "X"), IsEmpty());
}

TEST_F(States, DifferInWhatTheyHoldNotInWhatHappenedBetween) {
    // b was deleted, and came back as it was, but for its name's spelling.
    const auto found = CompareStates(database, 1, 4, "B");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(TextOf(found[0]), "changed B");
    EXPECT_THAT(found[0].changes, ElementsAre(test::Changed("Name", "b", "B")));
    Write({Deleted("C")});
    ObjectChange back = Changed("C", "2");
    back.kind = Kind::kCreated;
    Write({back});
    EXPECT_THAT(Differences(4, 6), IsEmpty());
}

}  // namespace oam::server::test
