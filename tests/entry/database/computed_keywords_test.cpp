// The lists that the Supervisor computes at each read.
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ComputedKeywords : public ServiceTest {
  protected:
    void StartFull() {
        AddPluginFor("b.bpi", {"zeta", "Alpha"});
        AddPluginFor("A.BPI", {"Mid"});
        AddComponent("d.emc");
        AddComponent("C.emc");
        recorder.Script("b.bpi", [](ModuleScript& script) {
            script.detected = {{"second", "zeta", "7", "8"}, {"First", "Alpha", "5", "6"}};
        });
        Start();
        CreateBoard("zeta");
        CreateBoard("Mid");
        EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
        handle = Open("Supervisor");
    }

    Answer Read(const std::string& keyword) { return GetKeyword(handle, keyword); }
    std::vector<std::string> List(const std::string& name) {
        std::vector<std::string> elements;
        const int count = std::atoi(Read(name + ".Count").text.c_str());
        for (int i = 0; i < count; ++i) {
            elements.push_back(Read(name + "[" + std::to_string(i) + "]").text);
        }
        EXPECT_EQ(Read(name + "[" + std::to_string(count) + "]"), Fails(OAMERR_NOT_FOUND));
        return elements;
    }

    unsigned long handle = 0;
};

TEST_F(ComputedKeywords, ListTheServicesTablesInTheirOrder) {
    StartFull();
    EXPECT_THAT(List("BoardPlugins"), ElementsAre("A.BPI", "b.bpi"));
    EXPECT_THAT(List("Products"), ElementsAre("Alpha", "Mid", "zeta"));
    EXPECT_THAT(List("ExtendedManagementComponents"), ElementsAre("C.emc", "d.emc"));
    EXPECT_THAT(List("Boards"), ElementsAre("Mid 0", "zeta 0"));
}

TEST_F(ComputedKeywords, EmptyTablesAreEmptyLists) {
    Start();
    EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    handle = Open("Supervisor");
    for (const char* name :
         {"BoardPlugins", "Products", "ExtendedManagementComponents", "Boards", "DetectedBoards"}) {
        EXPECT_EQ(Read(std::string(name) + ".Count"), Is("0"));
        EXPECT_EQ(Read(std::string(name) + "[0]"), Fails(OAMERR_NOT_FOUND));
    }
}

TEST_F(ComputedKeywords, FollowTheTables) {
    StartFull();
    CreateBoard("Alpha");
    EXPECT_THAT(List("Boards"), ElementsAre("Alpha 0", "Mid 0", "zeta 0"));
    EXPECT_EQ(_oamDeleteBoard("Mid 0"), OAM_SUCCESS);
    EXPECT_EQ(Change("zeta 0", "Name", "Aaa"), OAM_SUCCESS);
    EXPECT_THAT(List("Boards"), ElementsAre("Aaa", "Alpha 0"));
}

TEST_F(ComputedKeywords, NamesAreFoundInAnyCase) {
    StartFull();
    EXPECT_EQ(Read("boardplugins.count"), Is("2"));
    EXPECT_EQ(Read("PRODUCTS[1]"), Is("Mid"));
    EXPECT_EQ(Read("detectedBOARDS[1].NAME"), Is("second"));
    EXPECT_EQ(Read("DetectedBoards.COUNT"), Is("2"));
}

TEST_F(ComputedKeywords, LongerAndShorterNamesAreNotTheirs) {
    StartFull();
    for (const char* name : {"BoardPluginsX", "BoardPluginsX.Count", "BoardPlugin", "Board",
                             "Boards_", "Product.Count", "ProductsX[0]", "Boards.Counts",
                             "Boards.Count.x", "Boards.", "Products.Name", ".Count", "[0]", ""}) {
        EXPECT_EQ(Read(name), Fails(OAMERR_NOT_FOUND)) << name;
    }
}

TEST_F(ComputedKeywords, ListItselfHasNoValue) {
    StartFull();
    for (const char* name : {"BoardPlugins", "Products", "ExtendedManagementComponents", "Boards",
                             "DetectedBoards", "Version"}) {
        EXPECT_EQ(Read(name), Fails(OAMERR_NOT_FOUND)) << name;
    }
}

TEST_F(ComputedKeywords, NegativeIndexIsOutOfRange) {
    StartFull();
    EXPECT_EQ(Read("Products[-1]"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(Read("DetectedBoards[-1].Name"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(Read("Products[4294967296]"), Fails(OAMERR_NOT_FOUND)) << "beyond 32 bits";
    EXPECT_EQ(Read("Products[99999999999999999999]"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(ComputedKeywords, CountNeedsTwelveBytesHoweverShortItIs) {
    StartFull();
    char buffer[16] = "mine";
    for (const char* name : {"Boards.Count", "DetectedBoards.Count", "Products.Count"}) {
        EXPECT_EQ(_oamGetKeyword(handle, name, buffer, 11), OAMERR_NOT_ENOUGH_MEMORY) << name;
        EXPECT_STREQ(buffer, "mine");
        EXPECT_EQ(_oamGetKeyword(handle, name, nullptr, 0), OAM_SUCCESS);
    }
    EXPECT_EQ(_oamGetKeyword(handle, "Boards.Count", buffer, 12), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "2");
}

TEST_F(ComputedKeywords, ElementFitsOnlyWithItsTerminator) {
    StartFull();
    char buffer[16] = "mine";
    EXPECT_EQ(_oamGetKeyword(handle, "Products[1]", buffer, 3), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(_oamGetKeyword(handle, "DetectedBoards[1].Name", buffer, 6),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "mine");
    EXPECT_EQ(_oamGetKeyword(handle, "Products[1]", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(_oamGetKeyword(handle, "Products[3]", nullptr, 0), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamGetKeyword(handle, "Products[1]", buffer, 4), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "Mid");
}

TEST_F(ComputedKeywords, DetectedBoardsAreStructures) {
    StartFull();
    EXPECT_EQ(Read("DetectedBoards.Count"), Is("2"));
    EXPECT_EQ(Read("DetectedBoards[0].Name"), Is("First"));
    EXPECT_EQ(Read("DetectedBoards[0].Product"), Is("Alpha"));
    EXPECT_EQ(Read("DetectedBoards[0].Location.PCI.Bus"), Is("5"));
    EXPECT_EQ(Read("DetectedBoards[0].Location.PCI.Slot"), Is("6"));
    EXPECT_EQ(Read("DetectedBoards[1].Name"), Is("second"));
    EXPECT_EQ(Read("DetectedBoards[1].location.pci.slot"), Is("8"));
    EXPECT_EQ(Read("DetectedBoards[2].Name"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(ComputedKeywords, KeptDetectedBoardsStayUntilTheNextDetection) {
    StartFull();
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "DetectedBoards[1].Name"), Is("second"));
    recorder.Script("b.bpi", [](ModuleScript& script) { script.detected.clear(); });
    EXPECT_EQ(KeywordOf("Supervisor", "DetectedBoards.Count"), Is("2"));
    EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "DetectedBoards.Count"), Is("0"));
}

TEST_F(ComputedKeywords, KeptUnknownMemberOfADetectedBoardSucceedsWithoutAnAnswer) {
    StartFull();
    char buffer[16] = "mine";
    for (const char* name : {"DetectedBoards[0].Foo", "DetectedBoards[1].Location",
                             "DetectedBoards[1].Location.PCI", "DetectedBoards[0].NameX"}) {
        EXPECT_EQ(_oamGetKeyword(handle, name, buffer, sizeof buffer), OAM_SUCCESS) << name;
        EXPECT_STREQ(buffer, "mine");
    }
    EXPECT_EQ(Read("DetectedBoards[2].Foo"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(ComputedKeywords, DetectedBoardWithoutAMemberIsNotFoundOrItsName) {
    StartFull();
    EXPECT_THAT(Read("DetectedBoards[0]"), ::testing::AnyOf(Fails(OAMERR_NOT_FOUND), Is("First")));
}

TEST_F(ComputedKeywords, StoredKeywordIsReadWhereNothingIsComputed) {
    StartFull();
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    handle = Open("Supervisor", kProvider);
    EXPECT_EQ(_oamSetKeyword(handle, "Products[9]", "stored"), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(handle, "Products[0]", "stored"), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(handle, "Boards.Count", "77"), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(handle, "Boards.Own", "stored"), OAM_SUCCESS);
    EXPECT_EQ(Read("Products[9]"), Is("stored"));
    EXPECT_EQ(Read("Products[0]"), Is("Alpha"));
    EXPECT_EQ(Read("Boards.Count"), Is("2")) << "the computed one hides the stored one";
    EXPECT_EQ(Read("Boards.Own"), Is("stored"));
    EXPECT_EQ(DbGetKeyword(handle, "Boards.Count"), Is("77"));
}

TEST_F(ComputedKeywords, StoredKeywordWithAListsNameLeavesTheListAsItIs) {
    StartFull();
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    handle = Open("Supervisor", kProvider);
    for (const char* keyword : {"Boards", "Boards[0]", "Boards.Count", "DetectedBoards[0].Name"}) {
        EXPECT_EQ(_oamSetKeyword(handle, keyword, "stored"), OAM_SUCCESS) << keyword;
    }
    EXPECT_THAT(List("Boards"), ElementsAre("Mid 0", "zeta 0"));
    EXPECT_EQ(Read("DetectedBoards[0].Name"), Is("First"));
}

TEST_F(ComputedKeywords, VersionIsStored) {
    Start();
    EXPECT_EQ(KeywordOf("Supervisor", "Version.Major"), Is("1"));
    EXPECT_EQ(KeywordOf("Supervisor", "version.minor"), Is("0"));
    EXPECT_EQ(KeywordOf("Supervisor", "Version.Patch"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(ComputedKeywords, AreNotListedAmongTheStored) {
    StartFull();
    std::vector<std::string> expected;
    for (const auto& entry : SupervisorEntries()) expected.push_back(entry.first);
    EXPECT_EQ(EntryNames(handle), expected);
}

}  // namespace
}  // namespace oam::test
