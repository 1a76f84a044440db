#include "history/change_finder.h"

#include <gtest/gtest.h>

#include "data_files.h"
#include "history/object_key.h"
#include "matchers.h"

namespace oam::server::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class Finder : public ::testing::Test {
  protected:
    static FoundFile Read(const std::string& file, const std::string& content) {
        const oam::DataFile data = ReadDataFile(content, kObjectRoot);
        EXPECT_FALSE(data.mistake);
        return {file, FoundFile::Condition::kObject, content, data.objects.front(), {}};
    }
    void TakeBoard(const std::string& file, const std::string& name, const Entries& more = {}) {
        finder.Take({{Read(file, BoardFile(name, more))}, {}});
    }
    void TakeSpoiled(const std::string& file) {
        finder.Take({{{file, FoundFile::Condition::kSpoiled, {}, {}, "spoiled"}}, {}});
    }
    void TakeGone(const std::string& file) { finder.Take({{}, {file}}); }

    ChangeFinder::Finds Compare(bool mayRename = true) const {
        return finder.Compare(
            known, [this](const std::string& name) { return bytes.at(ObjectKey(name)); },
            mayRename);
    }
    // What is found is in the book from now on.
    std::vector<std::string> Settle(bool mayRename = true) {
        const auto finds = Compare(mayRename);
        for (const ObjectChange& change : finds.changes) {
            known.erase(ObjectKey(change.previous));
            known.erase(ObjectKey(change.object));
            if (change.kind == ObjectDifference::Kind::kDeleted) continue;
            known[ObjectKey(change.object)] = {change.object, change.file, 1};
            bytes[ObjectKey(change.object)] = change.bytes;
        }
        for (const MovedObject& moved : finds.moved)
            known.at(ObjectKey(moved.object)).file = moved.file;
        finder.Settle(known);
        return TextsOf(finds.changes);
    }

    ChangeFinder finder;
    KnownObjects known;
    std::map<std::string, std::string> bytes;
};

}  // namespace

TEST_F(Finder, FindsCreatedObjectsWithAllTheirKeywords) {
    TakeBoard("Obj1.xmo", "B");
    TakeBoard("Obj0.xmo", "a");
    const auto finds = Compare();
    EXPECT_THAT(TextsOf(finds.changes), ElementsAre("created a", "created B"));
    EXPECT_EQ(finds.changes[0].file, "Obj0.xmo");
    EXPECT_EQ(finds.changes[0].bytes, BoardFile("a"));
    EXPECT_THAT(finds.changes[0].changes, Contains(Changed("Name", std::nullopt, "a")));
    EXPECT_EQ(finds.changes[0].changes.size(), 5u);
}

TEST_F(Finder, FindsChangedObjectsWithWhatChanged) {
    TakeBoard("Obj0.xmo", "A", {{"Number", "1"}});
    Settle();
    TakeBoard("Obj0.xmo", "A", {{"Number", "2"}});
    const auto finds = Compare();
    EXPECT_THAT(TextsOf(finds.changes), ElementsAre("changed A"));
    EXPECT_THAT(finds.changes[0].changes, ElementsAre(Changed("Number", "1", "2")));
}

TEST_F(Finder, FindsDeletedObjectsWithWhatTheyHad) {
    TakeBoard("Obj0.xmo", "A");
    Settle();
    TakeGone("Obj0.xmo");
    const auto finds = Compare();
    EXPECT_THAT(TextsOf(finds.changes), ElementsAre("deleted A"));
    EXPECT_THAT(finds.changes[0].changes, Contains(Changed("Name", "A", std::nullopt)));
}

TEST_F(Finder, FindsWhatWasDeletedBeforeItsFirstLook) {
    known["b"] = {"B", "Obj1.xmo", 1};
    bytes["b"] = BoardFile("B");
    TakeBoard("Obj0.xmo", "A");
    EXPECT_THAT(Settle(), ElementsAre("created A", "deleted B"));
}

TEST_F(Finder, FindsNothingInAFileThatWasWrittenAgain) {
    TakeBoard("Obj0.xmo", "A");
    Settle();
    EXPECT_FALSE(finder.HasNews());
    TakeBoard("Obj0.xmo", "A");
    EXPECT_TRUE(finder.HasNews());
    EXPECT_THAT(Settle(), IsEmpty());
    EXPECT_FALSE(finder.HasNews());
}

TEST_F(Finder, TakesOtherWhiteSpaceForNoChange) {
    TakeBoard("Obj0.xmo", "A");
    Settle();
    finder.Take({{Read("Obj0.xmo", BoardFile("A") + "\n\n")}, {}});
    EXPECT_THAT(Settle(), IsEmpty());
}

TEST_F(Finder, FindsARenamedObjectByItsFile) {
    TakeBoard("Obj0.xmo", "A", {{"Number", "1"}});
    Settle();
    TakeBoard("Obj0.xmo", "B", {{"Number", "2"}});
    const auto finds = Compare();
    EXPECT_THAT(TextsOf(finds.changes), ElementsAre("changed B (was A)"));
    EXPECT_THAT(finds.changes[0].changes,
                ElementsAre(Changed("Name", "A", "B"), Changed("Number", "1", "2")));
    Settle();
    EXPECT_FALSE(known.contains("a"));
    EXPECT_EQ(known.at("b").file, "Obj0.xmo");
}

TEST_F(Finder, TakesAChangeOfCaseForAChangeOfTheSameObject) {
    TakeBoard("Obj0.xmo", "board");
    Settle();
    TakeBoard("Obj0.xmo", "Board");
    const auto finds = Compare();
    EXPECT_THAT(TextsOf(finds.changes), ElementsAre("changed Board"));
    EXPECT_THAT(finds.changes[0].changes, ElementsAre(Changed("Name", "board", "Board")));
}

TEST_F(Finder, TakesAnotherProductInTheFileForAnotherObject) {
    TakeBoard("Obj0.xmo", "A");
    Settle();
    finder.Take({{Read("Obj0.xmo", test::DataFile("B", StandardEntries("B", "SIM-T1")))}, {}});
    EXPECT_THAT(Settle(), ElementsAre("deleted A", "created B"));
}

TEST_F(Finder, TakesNoFileForAnIdentityAfterAnImport) {
    TakeBoard("Obj0.xmo", "A");
    Settle();
    TakeBoard("Obj0.xmo", "B");
    EXPECT_THAT(Settle(false), ElementsAre("deleted A", "created B"));
}

TEST_F(Finder, FollowsNamesWhenFilesAreGivenOutAnew) {
    TakeBoard("Obj0.xmo", "A");
    TakeBoard("Obj1.xmo", "B");
    Settle();
    TakeBoard("Obj0.xmo", "B");
    TakeBoard("Obj1.xmo", "A", {{"Number", "7"}});
    EXPECT_THAT(Settle(), ElementsAre("changed A"));
    EXPECT_EQ(known.at("a").file, "Obj1.xmo");
    EXPECT_EQ(known.at("b").file, "Obj0.xmo");
}

TEST_F(Finder, FollowsAnObjectIntoAnotherFile) {
    TakeBoard("Obj0.xmo", "A");
    Settle();
    TakeGone("Obj0.xmo");
    TakeBoard("Obj5.xmo", "A");
    EXPECT_THAT(Settle(), IsEmpty());
    EXPECT_EQ(known.at("a").file, "Obj5.xmo");
}

TEST_F(Finder, TakesASpoiledFileForNoDeletion) {
    TakeBoard("Obj0.xmo", "A");
    Settle();
    TakeSpoiled("Obj0.xmo");
    EXPECT_THAT(Settle(), IsEmpty());
    EXPECT_EQ(finder.Unreadable().at("Obj0.xmo").why, "spoiled");
    EXPECT_FALSE(finder.IsHeld("a"));
    TakeBoard("Obj0.xmo", "A", {{"Number", "1"}});
    EXPECT_THAT(Settle(), ElementsAre("changed A"));
    EXPECT_THAT(finder.Unreadable(), IsEmpty());
}

TEST_F(Finder, TakesTheLossOfASpoiledFileForADeletion) {
    TakeBoard("Obj0.xmo", "A");
    Settle();
    TakeSpoiled("Obj0.xmo");
    Settle();
    TakeGone("Obj0.xmo");
    EXPECT_THAT(Settle(), ElementsAre("deleted A"));
}

TEST_F(Finder, FollowsAnObjectOutOfASpoiledFile) {
    TakeBoard("Obj0.xmo", "A");
    Settle();
    TakeSpoiled("Obj0.xmo");
    TakeBoard("Obj1.xmo", "A", {{"Number", "1"}});
    EXPECT_THAT(Settle(), ElementsAre("changed A"));
    EXPECT_EQ(known.at("a").file, "Obj1.xmo");
}

TEST_F(Finder, StaysWithTheKnownFileOfTwoThatHoldOneObject) {
    TakeBoard("Obj5.xmo", "A");
    Settle();
    TakeBoard("Obj0.xmo", "A", {{"Number", "9"}});
    EXPECT_THAT(Settle(), IsEmpty());
    EXPECT_EQ(known.at("a").file, "Obj5.xmo");
    // And turns to the other one when the known one goes, however long ago that was read.
    TakeGone("Obj5.xmo");
    EXPECT_THAT(Settle(), ElementsAre("changed A"));
    EXPECT_EQ(known.at("a").file, "Obj0.xmo");
}

TEST_F(Finder, TakesTheFirstOfTwoUnknownFilesThatHoldOneObject) {
    TakeBoard("Obj1.xmo", "A", {{"Number", "1"}});
    TakeBoard("Obj0.xmo", "a");
    EXPECT_THAT(Settle(), ElementsAre("created a"));
    EXPECT_EQ(known.at("a").file, "Obj0.xmo");
}

TEST_F(Finder, KeepsItsFindsUntilTheyAreSettled) {
    TakeBoard("Obj0.xmo", "A");
    (void)Compare();
    TakeBoard("Obj1.xmo", "B");
    EXPECT_THAT(Settle(), ElementsAre("created A", "created B"));
}

TEST_F(Finder, ExpectsALostObjectBack) {
    TakeBoard("Obj0.xmo", "A");
    Settle();
    TakeGone("Obj0.xmo");
    finder.ExpectBack("a");
    EXPECT_THAT(Settle(), IsEmpty());
    finder.StartOver();
    EXPECT_THAT(Settle(), IsEmpty());
    // Back, and now it can be deleted.
    TakeBoard("Obj0.xmo", "A");
    EXPECT_THAT(Settle(), IsEmpty());
    TakeGone("Obj0.xmo");
    EXPECT_THAT(Settle(), ElementsAre("deleted A"));
}

}  // namespace oam::server::test
