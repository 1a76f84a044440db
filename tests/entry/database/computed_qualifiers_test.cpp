// The qualifiers of the Supervisor's computed lists.
//
// A qualifier that a list does not answer is read from the database, and its default after that:
// "Keywords.Count" of a list without members is so the default 0.
#include "support/service_test.h"

namespace oam::test {
namespace {

class ComputedQualifiers : public ServiceTest {
  protected:
    void SetUp() override {
        AddPlugin("b.bpi", [](ModuleScript& script) {
            script.products = {"Prod"};
            script.detected = {{"First", "Prod", "5", "6"}, {"Second", "Prod", "7", "8"}};
        });
        AddComponent("c.emc");
        Start();
        CreateBoard("Prod");
        EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
        handle = Open("Supervisor", kProvider);
    }
    void TearDown() override {
        EXPECT_EQ(_oamCloseObject_WOAN(handle), OAM_SUCCESS);
        ServiceTest::TearDown();
    }

    Answer Ask(const std::string& keyword, const std::string& qualifier) {
        return GetQualifier(handle, keyword, qualifier);
    }

    unsigned long handle = 0;
};

struct ListRow {
    const char* name;
    const char* description;
    const char* elementType;
};

constexpr ListRow kLists[] = {
    {"BoardPlugins", "list of Board Plug-ins found", "Object"},
    {"Boards", "list of boards in configuration", "Object"},
    {"ExtendedManagementComponents", "list of Extended Management Components found", "Object"},
    {"Products", "list of supported board product types", "String"},
};

TEST_F(ComputedQualifiers, ListIsAReadOnlyArrayWithADescription) {
    for (const ListRow& row : kLists) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Ask(row.name, "Type"), Is("Array"));
        EXPECT_EQ(Ask(row.name, "TYPE"), Is("Array"));
        EXPECT_EQ(Ask(row.name, "Description"), Is(row.description));
        EXPECT_EQ(Ask(row.name, "ReadOnly"), Is("Yes"));
        EXPECT_EQ(Ask(row.name, "Keywords.Count"), Is("0")) << "the default";
        EXPECT_EQ(Ask(row.name, "Keywords[0]"), Fails(OAMERR_NOT_FOUND));
        EXPECT_EQ(Ask(row.name, "Max"), Is("32767")) << "the default";
        EXPECT_EQ(Ask(row.name, "Other"), Fails(OAMERR_NOT_FOUND));
    }
}

TEST_F(ComputedQualifiers, CountIsAReadOnlyInteger) {
    for (const ListRow& row : kLists) {
        const std::string count = std::string(row.name) + ".count";
        EXPECT_EQ(Ask(count, "Type"), Is("Integer"));
        EXPECT_EQ(Ask(count, "readonly"), Is("Yes"));
        EXPECT_EQ(Ask(count, "Description"), Is("")) << "the default";
        EXPECT_EQ(Ask(count, "Other"), Fails(OAMERR_NOT_FOUND));
    }
}

TEST_F(ComputedQualifiers, ElementIsReadOnlyAndItsIndexIsNotChecked) {
    for (const ListRow& row : kLists) {
        for (const char* index : {"[0]", "[99]"}) {
            const std::string element = std::string(row.name) + index;
            EXPECT_EQ(Ask(element, "Type"), Is(row.elementType)) << element;
            EXPECT_EQ(Ask(element, "ReadOnly"), Is("Yes"));
            EXPECT_EQ(Ask(element, "Other"), Fails(OAMERR_NOT_FOUND));
        }
    }
}

TEST_F(ComputedQualifiers, OtherNamesUnderAListHaveStoredOnesOnly) {
    EXPECT_EQ(Ask("Boards.Own", "Type"), Is("String")) << "the default";
    EXPECT_EQ(Ask("Boards.Own", "ReadOnly"), Is("No"));
    EXPECT_EQ(_oamDbSetQualifier(handle, "Boards.Own", "Type", "Mine"), OAM_SUCCESS);
    EXPECT_EQ(Ask("Boards.Own", "Type"), Is("Mine"));
}

TEST_F(ComputedQualifiers, StoredOneIsReadWhereNothingIsComputed) {
    EXPECT_EQ(_oamDbSetQualifier(handle, "Boards", "Max", "5"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetQualifier(handle, "Boards", "Type", "Mine"), OAM_SUCCESS);
    EXPECT_EQ(Ask("Boards", "Max"), Is("5"));
    EXPECT_EQ(Ask("Boards", "Type"), Is("Array")) << "the computed one hides the stored one";
    EXPECT_EQ(DbGetQualifier(handle, "Boards", "Type"), Is("Mine"));
}

TEST_F(ComputedQualifiers, VersionIsAStructureOfTwo) {
    EXPECT_EQ(Ask("Version", "Type"), Is("Struct"));
    EXPECT_EQ(Ask("Version", "Description"), Is(""));
    EXPECT_EQ(Ask("Version", "ReadOnly"), Is("Yes"));
    EXPECT_EQ(Ask("Version", "Keywords.Count"), Is("2"));
    EXPECT_EQ(Ask("Version", "Keywords[0]"), Is("Version.Major"));
    EXPECT_EQ(Ask("Version", "keywords[1]"), Is("Version.Minor"));
    EXPECT_EQ(Ask("Version", "Keywords[2]"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(Ask("Version.Major", "Type"), Is("Integer")) << "the stored one";
    EXPECT_EQ(Ask("Version.Major", "Description"), Is("version major number"));
}

TEST_F(ComputedQualifiers, EmptyNameIsTheStructureOfAllComputedKeywords) {
    EXPECT_EQ(Ask("", "Type"), Is("Struct"));
    EXPECT_EQ(Ask("", "Description"), Is(""));
    EXPECT_EQ(Ask("", "ReadOnly"), Is("Yes"));
    EXPECT_EQ(Ask("", "Keywords.Count"), Is("11"));
    const char* const members[] = {"ExtendedManagementComponents",
                                   "Products",
                                   "BoardPlugins",
                                   "Boards",
                                   "DetectedBoards",
                                   "Name",
                                   "AutoStartEnabled",
                                   "AutoStopEnabled",
                                   "Version",
                                   "OammonLog",
                                   "SynchronizeEnabled"};
    for (size_t i = 0; i < std::size(members); ++i) {
        EXPECT_EQ(Ask("", "Keywords[" + std::to_string(i) + "]"), Is(members[i]));
    }
    EXPECT_EQ(Ask("", "Keywords[11]"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(Ask("", "Keywords[-1]"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(Ask("", "Other"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(ComputedQualifiers, MemberCountNeedsTwelveBytesHoweverShortItIs) {
    char buffer[16] = "mine";
    EXPECT_EQ(_oamGetQualifier(handle, "Version", "Keywords.Count", buffer, 11),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "mine");
    EXPECT_EQ(_oamGetQualifier(handle, "Version", "Keywords.Count", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(_oamGetQualifier(handle, "Version", "Keywords.Count", buffer, 12), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "2");
}

TEST_F(ComputedQualifiers, TooLongAnAnswerIsNotReplacedByADefault) {
    char buffer[16] = "mine";
    EXPECT_EQ(_oamGetQualifier(handle, "Boards", "Type", buffer, 5), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "mine");
    EXPECT_EQ(_oamGetQualifier(handle, "Boards", "Type", buffer, 6), OAM_SUCCESS);
}

TEST_F(ComputedQualifiers, OfTheListOfDetectedBoards) {
    EXPECT_EQ(Ask("DetectedBoards", "Type"), Is("Array"));
    EXPECT_EQ(Ask("DetectedBoards", "Description"),
              Is("list of boards that were physically detected in chassis"));
    EXPECT_EQ(Ask("DetectedBoards", "ReadOnly"), Is("Yes"));
    EXPECT_EQ(Ask("DetectedBoards", "Keywords[0]"), Is("Name"));
    EXPECT_EQ(Ask("DetectedBoards", "Keywords[1]"), Is("Product"));
    EXPECT_EQ(Ask("DetectedBoards", "Keywords[2]"), Is("Location"));
    EXPECT_EQ(Ask("DetectedBoards", "Keywords[3]"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(Ask("DetectedBoards.Count", "Type"), Is("Integer"));
    EXPECT_EQ(Ask("DetectedBoards.Count", "ReadOnly"), Is("Yes"));
}

TEST_F(ComputedQualifiers, OfADetectedBoard) {
    const std::string board = "DetectedBoards[1]";
    EXPECT_EQ(Ask(board, "Type"), Is("Struct"));
    EXPECT_EQ(Ask(board, "ReadOnly"), Is("Yes"));
    EXPECT_EQ(Ask(board, "Keywords.Count"), Is("3"));
    EXPECT_EQ(Ask(board, "Keywords[0]"), Is("DetectedBoards[1].Name"));
    EXPECT_EQ(Ask(board, "Keywords[1]"), Is("DetectedBoards[1].Product"));
    EXPECT_EQ(Ask(board, "Keywords[2]"), Is("DetectedBoards[1].Location"));
    EXPECT_EQ(Ask(board, "Other"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(ComputedQualifiers, OfADetectedBoardsLocation) {
    const std::string location = "DetectedBoards[0].Location";
    EXPECT_EQ(Ask(location, "Type"), Is("Struct"));
    EXPECT_EQ(Ask(location, "ReadOnly"), Is("Yes"));
    EXPECT_EQ(Ask(location, "Keywords.Count"), Is("1"));
    EXPECT_EQ(Ask(location, "Keywords[0]"), Is("DetectedBoards[0].Location.PCI"));
    EXPECT_EQ(Ask(location + ".PCI", "Type"), Is("Struct"));
    EXPECT_EQ(Ask(location + ".PCI", "ReadOnly"), Is("Yes"));
    EXPECT_EQ(Ask(location + ".PCI", "Keywords.Count"), Is("2"));
    EXPECT_EQ(Ask(location + ".PCI", "Keywords[0]"), Is("DetectedBoards[0].Location.PCI.Bus"));
    EXPECT_EQ(Ask(location + ".PCI", "Keywords[1]"), Is("DetectedBoards[0].Location.PCI.Slot"));
}

TEST_F(ComputedQualifiers, OfADetectedBoardsMembers) {
    for (const char* member : {".Location.PCI.Bus", ".Location.PCI.Slot"}) {
        EXPECT_EQ(Ask(std::string("DetectedBoards[0]") + member, "Type"), Is("INTEGER"));
        EXPECT_EQ(Ask(std::string("DetectedBoards[0]") + member, "Max"), Is("255"));
        EXPECT_EQ(Ask(std::string("DetectedBoards[0]") + member, "ReadOnly"), Is("Yes"));
    }
    for (const char* member : {".Name", ".Product"}) {
        EXPECT_EQ(Ask(std::string("DetectedBoards[0]") + member, "Type"), Is("STRING"));
        EXPECT_EQ(Ask(std::string("DetectedBoards[0]") + member, "Max"), Is("32767"));
        EXPECT_EQ(Ask(std::string("DetectedBoards[0]") + member, "ReadOnly"), Is("Yes"));
    }
}

}  // namespace
}  // namespace oam::test
