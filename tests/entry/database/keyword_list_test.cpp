// An object's keywords and qualifiers, as the database calls reach them.
#include <strings.h>

#include <algorithm>
#include <array>

#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

// An object that no plug-in serves, opened as a provider.
class KeywordList : public ServiceTest {
  protected:
    void SetUp() override {
        home.WriteDataFile("Thing.xmo", DataFile("Thing", {{"Name", "Thing"}}));
        Start();
        handle = DbOpen("Thing", kProvider);
    }

    oam_result Set(const std::string& name, const std::string& value) {
        return _oamDbSetKeyword(handle, name.c_str(), value.c_str());
    }

    // Closes, saves and opens again.
    void Reopen() {
        EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
        handle = DbOpen("Thing", kProvider);
    }

    unsigned long handle = 0;
};

TEST_F(KeywordList, NamesAreFoundInAnyCaseAndKeepTheirFirstSpelling) {
    EXPECT_EQ(Set("Location.PCI.Bus", "1"), OAM_SUCCESS);
    EXPECT_EQ(Set("LOCATION.pci.BUS", "2"), OAM_SUCCESS);
    EXPECT_EQ(DbGetKeyword(handle, "location.PCI.bus"), Is("2"));
    EXPECT_THAT(EntryNames(handle), ElementsAre("Location.PCI.Bus", "Name"));
    Reopen();
    EXPECT_THAT(EntryNames(handle), ElementsAre("Location.PCI.Bus", "Name"));
}

TEST_F(KeywordList, NewNameNeedsProviderMode) {
    EXPECT_EQ(_oamDbSetProviderMode(handle, false), OAM_SUCCESS);
    EXPECT_EQ(Set("New", "1"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(DbGetKeyword(handle, "New"), Fails(OAMERR_NOT_FOUND));
    EXPECT_THAT(EntryNames(handle), ElementsAre("Name"));
    EXPECT_EQ(Set("name", "Thing"), OAM_SUCCESS) << "a present one does not";
}

TEST_F(KeywordList, IsSortedWithoutRegardToCase) {
    for (const char* name : {"b", "A[0]", "C", "a", "A?Type", "zA", "Z_", "a.1", "B1", "a.Count"}) {
        EXPECT_EQ(Set(name, "v"), OAM_SUCCESS);
    }
    const std::vector<std::string> sorted = {"a",  "a.1", "a.Count", "A?Type", "A[0]", "b",
                                             "B1", "C",   "Name",    "Z_",     "zA"};
    EXPECT_THAT(EntryNames(handle), ElementsAreArray(sorted));
    Reopen();
    EXPECT_THAT(EntryNames(handle), ElementsAreArray(sorted));
}

TEST_F(KeywordList, ValueFitsOnlyWithItsTerminator) {
    EXPECT_EQ(Set("Key", "12345"), OAM_SUCCESS);
    std::array<char, 16> buffer;
    buffer.fill('u');
    for (unsigned size : {0u, 1u, 4u, 5u}) {
        EXPECT_EQ(_oamDbGetKeyword(handle, "Key", buffer.data(), size), OAMERR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(std::string(buffer.data(), buffer.size()), std::string(16, 'u')) << size;
    }
    EXPECT_EQ(_oamDbGetKeyword(handle, "Key", buffer.data(), 6), OAM_SUCCESS);
    EXPECT_EQ(std::string(buffer.data(), 7), std::string("12345\0u", 7));
}

TEST_F(KeywordList, NullBufferAsksForExistence) {
    EXPECT_EQ(_oamDbGetKeyword(handle, "Name", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(_oamDbGetKeyword(handle, "Missing", nullptr, 0), OAMERR_NOT_FOUND);
}

TEST_F(KeywordList, MissingKeywordLeavesTheBuffer) {
    char buffer[8] = "mine";
    EXPECT_EQ(_oamDbGetKeyword(handle, "Missing", buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_STREQ(buffer, "mine");
}

TEST_F(KeywordList, NullValueReadsAsTheEmptyText) {
    EXPECT_EQ(Set("Old", "value"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Old", nullptr), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "New", nullptr), OAM_SUCCESS);
    for (const char* name : {"Old", "New"}) {
        EXPECT_EQ(DbGetKeyword(handle, name), Is(""));
        EXPECT_EQ(_oamDbGetKeyword(handle, name, nullptr, 0), OAM_SUCCESS);
    }
    Reopen();
    EXPECT_EQ(DbGetKeyword(handle, "Old"), Is(""));
    EXPECT_EQ(DbGetKeyword(handle, "New"), Is(""));
}

TEST_F(KeywordList, EmptyValueNeedsABufferForItsTerminator) {
    EXPECT_EQ(Set("Empty", ""), OAM_SUCCESS);
    char buffer[2] = "u";
    EXPECT_EQ(_oamDbGetKeyword(handle, "Empty", buffer, 0), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(_oamDbGetKeyword(handle, "Empty", buffer, 1), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "");
}

TEST_F(KeywordList, HoldsAndLosesHundredsInAnyOrder) {
    constexpr int kCount = 200;
    std::vector<std::string> expected = {"Name"};
    for (int i = 0; i < kCount; ++i) {
        // 77 (below 33) and 200 share no divisor, so every number comes once.
        char name[16];
        std::snprintf(name, sizeof name, "key%03d", i * 77 % kCount);
        EXPECT_EQ(Set(name, name), OAM_SUCCESS);
        expected.push_back(name);
    }
    std::sort(expected.begin(), expected.end(), [](const std::string& a, const std::string& b) {
        return strcasecmp(a.c_str(), b.c_str()) < 0;
    });
    EXPECT_THAT(EntryNames(handle), ElementsAreArray(expected));
    for (int i = 0; i < kCount; ++i) {
        char name[16];
        std::snprintf(name, sizeof name, "key%03d", i * 33 % kCount);
        EXPECT_EQ(DbGetKeyword(handle, name), Is(name));
        EXPECT_EQ(_oamDbRemoveKeyword(handle, name), OAM_SUCCESS);
        std::erase(expected, name);
        EXPECT_THAT(EntryNames(handle), ElementsAreArray(expected));
    }
    EXPECT_THAT(expected, ElementsAre("Name"));
}

TEST_F(KeywordList, LastEntryMayLeaveAndComeBack) {
    EXPECT_EQ(_oamDbRemoveKeyword(handle, "NAME"), OAM_SUCCESS);
    EXPECT_THAT(EntryNames(handle), ElementsAre());
    EXPECT_EQ(_oamDbRemoveKeyword(handle, "Name"), OAMERR_NOT_FOUND);
    EXPECT_EQ(Set("Name", "Thing"), OAM_SUCCESS);
    EXPECT_THAT(EntryNames(handle), ElementsAre("Name"));
}

TEST_F(KeywordList, RemovedKeywordLeavesItsQualifiers) {
    EXPECT_EQ(Set("Bus", "3"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetQualifier(handle, "Bus", "Type", "Integer"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbRemoveKeyword(handle, "Bus"), OAM_SUCCESS);
    EXPECT_THAT(EntryNames(handle), ElementsAre("Bus?Type", "Name"));
    EXPECT_EQ(DbGetQualifier(handle, "Bus", "Type"), Is("Integer"));
}

TEST_F(KeywordList, QualifierIsAnEntryOfItsOwn) {
    EXPECT_EQ(_oamDbSetQualifier(handle, "Bus", "Type", "Integer"), OAM_SUCCESS);
    EXPECT_EQ(DbGetKeyword(handle, "Bus"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(DbGetKeyword(handle, "BUS?type"), Is("Integer"));
    EXPECT_EQ(DbGetQualifier(handle, "bus", "TYPE"), Is("Integer"));
    EXPECT_EQ(_oamDbSetQualifier(handle, "BUS", "TYPE", "String"), OAM_SUCCESS);
    EXPECT_THAT(EntryNames(handle), ElementsAre("Bus?Type", "Name"));
    EXPECT_EQ(_oamDbRemoveQualifier(handle, "bus", "type"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbRemoveQualifier(handle, "bus", "type"), OAMERR_NOT_FOUND);
    EXPECT_EQ(DbGetQualifier(handle, "Bus", "Type"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(KeywordList, StoredQualifierFollowsTheRulesOfTexts) {
    EXPECT_EQ(_oamDbSetQualifier(handle, "Bus", "Max", "255"), OAM_SUCCESS);
    char buffer[8] = "mine";
    EXPECT_EQ(_oamDbGetQualifier(handle, "Bus", "Max", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(_oamDbGetQualifier(handle, "Bus", "Min", nullptr, 0), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamDbGetQualifier(handle, "Bus", "Max", buffer, 3), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "mine");
    EXPECT_EQ(_oamDbGetQualifier(handle, "Bus", "Max", buffer, 4), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "255");
}

TEST_F(KeywordList, DatabaseQualifiersHaveNoDefaults) {
    EXPECT_EQ(DbGetQualifier(handle, "Name", "Type"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(DbGetQualifier(handle, "Name", "Max"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(KeywordList, EnumerationHasBothEnds) {
    EXPECT_EQ(_oamDbSetQualifier(handle, "Name", "Type", "Object"), OAM_SUCCESS);
    char buffer[16] = "mine";
    EXPECT_EQ(_oamDbEnumKeywords(handle, -1, buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamDbEnumKeywords(handle, 2, buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamDbEnumKeywords(handle, 1, buffer, 9), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "mine");
    EXPECT_EQ(_oamDbEnumKeywords(handle, 1, buffer, 10), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "Name?Type");
}

TEST_F(KeywordList, BytesAbove127AreNamesLikeAllOthers) {
    EXPECT_EQ(Set("\xC3\xA4", "umlaut \xFF"), OAM_SUCCESS);
    EXPECT_EQ(Set("zz", "z"), OAM_SUCCESS);
    Reopen();
    EXPECT_THAT(EntryNames(handle), ElementsAre("Name", "zz", "\xC3\xA4"));
    EXPECT_EQ(DbGetKeyword(handle, "\xC3\xA4"), Is("umlaut \xFF"));
}

}  // namespace
}  // namespace oam::test
