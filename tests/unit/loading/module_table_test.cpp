// The table of modules: names, entries once bound, and going through them while it changes.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "loading/module.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Entries {
    int number = 0;
    bool IsBound() const { return number != 0; }
};

class Modules : public ::testing::Test {
  protected:
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (int i = 0; i < table.Count(); ++i) names.emplace_back(table.NameAt(i));
        return names;
    }
    std::vector<int> Visited() const {
        std::vector<int> numbers;
        table.ForEach([&](const Entries& entries) { numbers.push_back(entries.number); });
        return numbers;
    }

    ModuleTable<Entries> table;
};

TEST_F(Modules, AreSortedByFileNameWithoutRegardToCase) {
    EXPECT_EQ(table.Insert("B.bpi"), OAM_SUCCESS);
    EXPECT_EQ(table.Insert("a.BPI"), OAM_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre("a.BPI", "B.bpi"));
    EXPECT_EQ(table.Insert("A.bpi"), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(table.Count(), 2);
}

TEST_F(Modules, KeepTheirOwnCopyOfTheName) {
    char name[] = "x.emc";
    EXPECT_EQ(table.Insert(name), OAM_SUCCESS);
    name[0] = 'y';
    EXPECT_THAT(Names(), ElementsAre("x.emc"));
}

TEST_F(Modules, GiveACopyOfTheirNameThatOutlivesThem) {
    EXPECT_EQ(table.Insert("x.emc"), OAM_SUCCESS);
    char name[kNameSize] = "";
    EXPECT_TRUE(table.CopyNameAt(0, name));
    EXPECT_FALSE(table.CopyNameAt(1, name));
    table.RemoveAll();
    EXPECT_STREQ(name, "x.emc");
}

TEST_F(Modules, HaveNoEntriesBeforeTheyAreBound) {
    EXPECT_EQ(table.Insert("x.emc"), OAM_SUCCESS);
    Entries entries{9};
    EXPECT_FALSE(table.EntriesOf("x.emc", &entries));
    EXPECT_TRUE(table.EntriesAt(0, &entries));
    EXPECT_EQ(entries.number, 0);
    EXPECT_THAT(Visited(), IsEmpty());
}

TEST_F(Modules, AnswerCopiesOfTheirEntriesOnceBound) {
    EXPECT_EQ(table.Insert("x.emc"), OAM_SUCCESS);
    EXPECT_EQ(table.Bind("X.EMC", Entries{4}), OAM_SUCCESS);
    EXPECT_EQ(table.Bind("y.emc", Entries{4}), OAMERR_NOT_FOUND);
    Entries entries;
    EXPECT_TRUE(table.EntriesOf("X.emc", &entries));
    EXPECT_EQ(entries.number, 4);
    EXPECT_FALSE(table.EntriesOf("y.emc", &entries));
    EXPECT_EQ(table.Find("x.EMC")->Calls().number, 4);
    EXPECT_EQ(table.Find("y.emc"), nullptr);
}

TEST_F(Modules, AreVisitedInNameOrderAndOnlyWhenBound) {
    for (const char* name : {"c.emc", "a.emc", "B.emc"}) EXPECT_EQ(table.Insert(name), OAM_SUCCESS);
    EXPECT_EQ(table.Bind("a.emc", Entries{1}), OAM_SUCCESS);
    EXPECT_EQ(table.Bind("c.emc", Entries{3}), OAM_SUCCESS);
    EXPECT_THAT(Visited(), ElementsAre(1, 3));
}

TEST_F(Modules, MayBeRemovedByTheOneThatIsVisited) {
    EXPECT_EQ(table.Insert("a.emc"), OAM_SUCCESS);
    EXPECT_EQ(table.Insert("b.emc"), OAM_SUCCESS);
    EXPECT_EQ(table.Bind("a.emc", Entries{1}), OAM_SUCCESS);
    EXPECT_EQ(table.Bind("b.emc", Entries{2}), OAM_SUCCESS);
    int visits = 0;
    table.ForEach([&](const Entries&) {
        ++visits;
        table.RemoveAll();
    });
    EXPECT_EQ(visits, 1);
    EXPECT_EQ(table.Count(), 0);
}

TEST_F(Modules, NoneIsOutsideTheTable) {
    Entries entries;
    EXPECT_EQ(table.NameAt(0), nullptr);
    EXPECT_FALSE(table.EntriesAt(0, &entries));
    EXPECT_EQ(table.Insert("x"), OAM_SUCCESS);
    EXPECT_EQ(table.NameAt(-1), nullptr);
    EXPECT_EQ(table.NameAt(1), nullptr);
    EXPECT_FALSE(table.EntriesAt(-1, &entries));
    EXPECT_FALSE(table.EntriesAt(1, &entries));
}

TEST_F(Modules, AreAsTheyWereWhenThereIsNoMemoryForOneMore) {
    for (int i = 0; i < 16; ++i) {
        ASSERT_EQ(table.Insert(("m" + std::to_string(i)).c_str()), OAM_SUCCESS);
    }
    const std::vector<std::string> before = Names();
    EXPECT_EQ(FailEachAllocation([&] { return table.Insert("a"); },
                                 [&](oam_result result) {
                                     EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_EQ(Names(), before);
                                 }),
              OAM_SUCCESS);
    EXPECT_EQ(table.Count(), 17);
}

}  // namespace
}  // namespace oam::test
