// An object follows its "Name" keyword.
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

class Rename : public ServiceTest {
  protected:
    void StartWithThings(const std::vector<std::string>& names) {
        for (const std::string& name : names) {
            home.WriteDataFile(name + ".xmo", DataFile(name, {{"Name", name}}));
        }
        Start();
        alerts.Clear();
    }

    // The objects without the Supervisor, which the names of these tests sort before.
    std::vector<std::string> Things() {
        std::vector<std::string> names = Objects();
        EXPECT_EQ(names.back(), "Supervisor");
        names.pop_back();
        return names;
    }
};

TEST_F(Rename, TellsTheOldNameAsTheTextAndThenTheChangeOfTheNew) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    const std::string board = CreateBoard("Prod");
    alerts.Clear();
    EXPECT_EQ(Change(board, "Name", "Renamed"), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_RENAMED, 0, "Renamed", "Prod 0"},
                                            Said{OAMEVN_MODIFIED, 0, "Renamed", ""}));
}

TEST_F(Rename, OfACloseWithoutAlertTellsTheNewNameOnly) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    const unsigned long handle = Open(CreateBoard("Prod"), kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "Name", "Renamed"), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(_oamCloseObject_WOAN(handle), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_RENAMED, 0, "Renamed", "Prod 0"}));
}

TEST_F(Rename, KeepsTheDataFileAndItsContentFollows) {
    StartWithThings({"Thing"});
    EXPECT_EQ(DbChange("Thing", "Name", "Other"), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Thing.xmo"), DataFile("Other", {{"Name", "Other"}}));
    EXPECT_EQ(StoredKeywordOf("other", "Name"), Is("Other"));
    unsigned long handle = 0;
    EXPECT_EQ(_oamDbOpenObject("Thing", &handle, kRead), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(StoredKeywordOf("Other", "Name"), Is("Other"));
}

TEST_F(Rename, OfTheSpellingAloneIsARename) {
    StartWithThings({"Thing"});
    EXPECT_EQ(DbChange("Thing", "Name", "THING"), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_RENAMED, 0, "THING", "Thing"}));
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", "THING"));
    EXPECT_EQ(home.ReadDataFile("Thing.xmo"), DataFile("THING", {{"Name", "THING"}}));
    EXPECT_EQ(StoredKeywordOf("thing", "Name"), Is("THING"));
}

TEST_F(Rename, ToTheSameNameIsNone) {
    StartWithThings({"Thing"});
    EXPECT_EQ(DbChange("Thing", "Name", "Thing"), OAM_SUCCESS);
    EXPECT_TRUE(alerts.All().empty());
}

TEST_F(Rename, AndBackInOneOpeningIsNone) {
    StartWithThings({"Thing"});
    const unsigned long handle = DbOpen("Thing", kWrite);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Name", "Other"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Name", "Thing"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_TRUE(alerts.All().empty());
}

TEST_F(Rename, MovesTheObjectToItsPlaceInTheOrder) {
    StartWithThings({"b", "d", "f", "h", "j"});
    struct Step {
        const char* from;
        const char* to;
        std::vector<std::string> order;
    };
    const Step steps[] = {
        {"f", "A", {"A", "b", "d", "h", "j"}},    // to the front
        {"A", "k", {"b", "d", "h", "j", "k"}},    // from the front to the end
        {"k", "c", {"b", "c", "d", "h", "j"}},    // from the end into the middle
        {"c", "E", {"b", "d", "E", "h", "j"}},    // over one neighbour
        {"E", "c", {"b", "c", "d", "h", "j"}},    // and back over it
        {"c", "C2", {"b", "C2", "d", "h", "j"}},  // within its place
        {"b", "a", {"a", "C2", "d", "h", "j"}},  {"j", "z2", {"a", "C2", "d", "h", "z2"}},
    };
    for (const Step& step : steps) {
        EXPECT_EQ(DbChange(step.from, "Name", step.to), OAM_SUCCESS);
        std::vector<std::string> order = Objects();
        std::erase(order, "Supervisor");
        EXPECT_EQ(order, step.order) << step.from << " to " << step.to;
        for (const std::string& name : step.order) {
            EXPECT_EQ(StoredKeywordOf(name, "Name"), Is(name));
        }
    }
}

// Kept: names are written as they are. A start reads something else there, and sets the file aside;
// whoever takes names from people refuses these.
TEST_F(Rename, IsAsItIsToANameThatADataFileCannotKeep) {
    for (const char* name : {"?", "!x", "/x", "a>b", "a<b"}) {
        StartWithThings({"One"});
        EXPECT_EQ(DbChange("One", "Name", name), OAM_SUCCESS) << name;
        EXPECT_THAT(Things(), ElementsAre(name));
        EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
        EXPECT_THAT(Things(), Not(Contains(name)));
        EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    }
}

TEST_F(Rename, ToANameWithABackslashIsNoDirectoryAndRefused) {
    StartWithThings({"One"});
    const std::string before = home.ReadDataFile("One.xmo");
    EXPECT_EQ(DbChange("One", "Name", "a\\b"), OAMERR_FILE_WRITE_ERROR);
    EXPECT_EQ(home.ReadDataFile("One.xmo"), before);
    EXPECT_THAT(Things(), ElementsAre("One"));
}

TEST_F(Rename, LastsForEveryNameThatADataFileCanKeep) {
    StartWithThings({"One"});
    std::string old = "One";
    for (const char* name : {"a?b", "a/b!", "100%s%n", "..", "&amp;", "\"q\""}) {
        EXPECT_EQ(DbChange(old, "Name", name), OAM_SUCCESS) << name;
        EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
        EXPECT_THAT(Things(), ElementsAre(name));
        old = name;
    }
}

TEST_F(Rename, FreesTheOldName) {
    StartWithThings({"One", "Another"});
    EXPECT_EQ(DbChange("One", "Name", "Free"), OAM_SUCCESS);
    EXPECT_EQ(DbChange("Another", "Name", "One"), OAM_SUCCESS);
    EXPECT_THAT(Things(), ElementsAre("Free", "One"));
}

TEST_F(Rename, HandleOfTheRenamedObjectIsClosedAndItsNewNameOpens) {
    StartWithThings({"Thing"});
    EXPECT_EQ(DbChange("Thing", "Name", "Other"), OAM_SUCCESS);
    EXPECT_EQ(DbChange("Other", "Name", "Third"), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_RENAMED, 0, "Other", "Thing"},
                                            Said{OAMEVN_RENAMED, 0, "Third", "Other"}));
}

}  // namespace
}  // namespace oam::test
