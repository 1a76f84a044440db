// What all computed keywords share: finding the one in charge, lists, and their qualifiers.
#include "config/keyword_trap.h"

#include <gmock/gmock.h>

#include <string>

namespace oam::test {
namespace {

// A trap with lists and members of its own, whose shared answers are opened to the test.
class Lists : public CKeywordTrap {
  public:
    explicit constexpr Lists(const char* name, int members = 0) : name_(name), members_(members) {}

    const char* GetName() const noexcept override { return name_; }
    const char* GetDescription() const noexcept override { return "a description"; }
    const char* GetElementType() const noexcept override { return "Object"; }
    int StringListCount() const noexcept override { return 3; }
    const char* StringListGetAt(int index) const noexcept override {
        return index == 0 ? "zero" : index == 1 ? "one" : "two";
    }
    int IntegerListCount() const noexcept override { return 2; }
    int IntegerListGetAt(int index) const noexcept override { return index == 0 ? -5 : 7; }
    int KeywordsCount() const noexcept override { return members_; }
    const char* GetKeywordsAt(int index) const noexcept override {
        return index == 0 ? "First" : "Second";
    }
    oam_result GetValue(const char* rest, char* buffer, unsigned size) const noexcept override {
        return StringListGetValue(rest, buffer, size);
    }
    oam_result GetNumber(const char* rest, char* buffer, unsigned size) const noexcept {
        return IntegerListGetValue(rest, buffer, size);
    }

  private:
    const char* name_;
    int members_;
};

// A trap with nothing but what it must have.
class Bare : public CKeywordTrap {
  public:
    const char* GetName() const noexcept override { return "Bare"; }
    oam_result GetValue(const char* rest, char* buffer, unsigned size) const noexcept override {
        return StringListGetValue(rest, buffer, size);
    }
    oam_result GetNumber(const char* rest, char* buffer, unsigned size) const noexcept {
        return IntegerListGetValue(rest, buffer, size);
    }
};

class KeywordTrap : public ::testing::Test {
  protected:
    std::string Value(const char* rest) {
        char buffer[32] = "untouched";
        EXPECT_EQ(list.GetValue(rest, buffer, sizeof buffer), OAM_SUCCESS) << rest;
        return buffer;
    }
    static std::string Qualifier(const CKeywordTrap& trap, const char* rest,
                                 const char* qualifier) {
        char buffer[32] = "untouched";
        const oam_result result = trap.GetQualifier(rest, qualifier, buffer, sizeof buffer);
        if (result != OAM_SUCCESS) {
            EXPECT_STREQ(buffer, "untouched");
        }
        return result == OAM_SUCCESS ? buffer : result == OAMERR_NOT_FOUND ? "(none)" : "(error)";
    }

    Lists list{"List"};
    Lists structure{"Struct", 2};
    Bare bare;
};

TEST_F(KeywordTrap, IsFoundByItsNameFollowedByAnEndDotOrBracket) {
    const Lists own("");
    const Lists boardPlugins("BoardPlugins");
    const Lists boards("Boards");
    const Lists version("Version");
    const CKeywordTrap* const traps[] = {&own, &boardPlugins, &boards, &version};
    const struct {
        const char* name;
        const CKeywordTrap* trap;
        const char* rest;
    } rows[] = {{"Boards", &boards, ""},
                {"BOARDS.count", &boards, ".count"},
                {"boards[3]", &boards, "[3]"},
                {"Boards[", &boards, "["},
                {"BoardPlugins.Count", &boardPlugins, ".Count"},
                {"BoardPluginsX", nullptr, ""},
                {"Board", nullptr, ""},
                {"Boardz", nullptr, ""},
                {"Version.Major", &version, ".Major"},
                {"Versions", nullptr, ""},
                {"Zulu", nullptr, ""},
                {"A", nullptr, ""},
                {"", &own, ""},
                {".Count", &own, ".Count"},
                {"[0]", &own, "[0]"}};
    for (const auto& row : rows) {
        const char* rest = "";
        EXPECT_EQ(CKeywordTrap::FindInArray(traps, 4, row.name, &rest), row.trap) << row.name;
        EXPECT_STREQ(rest, row.rest) << row.name;
    }
}

TEST_F(KeywordTrap, IsNotFoundInAnEmptyArray) {
    const char* rest = "";
    EXPECT_EQ(CKeywordTrap::FindInArray(nullptr, 0, "Boards", &rest), nullptr);
}

TEST_F(KeywordTrap, ListAnswersItsCountAndItsElements) {
    EXPECT_EQ(Value(".Count"), "3");
    EXPECT_EQ(Value(".COUNT"), "3");
    EXPECT_EQ(Value("[0]"), "zero");
    EXPECT_EQ(Value("[2]"), "two");
    EXPECT_EQ(Value("[01]"), "one");
}

TEST_F(KeywordTrap, ListAnswersNothingElse) {
    char buffer[32] = "untouched";
    for (const char* rest : {"", ".", ".Counts", "[3]", "[-1]", "[]", "[x]", "[0", "[0]x", "[0].y",
                             "[99999999999999999999]", "[4294967296]"}) {
        EXPECT_EQ(list.GetValue(rest, buffer, sizeof buffer), OAMERR_NOT_FOUND) << rest;
    }
    EXPECT_STREQ(buffer, "untouched");
}

TEST_F(KeywordTrap, CountNeedsTwelveBytesWhateverItIs) {
    char buffer[32] = "untouched";
    EXPECT_EQ(list.GetValue(".Count", buffer, 11), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "untouched");
    EXPECT_EQ(list.GetValue(".Count", buffer, 12), OAM_SUCCESS);
    EXPECT_EQ(list.GetValue(".Count", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(list.GetValue("[0]", buffer, 4), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(list.GetValue("[0]", buffer, 5), OAM_SUCCESS);
    EXPECT_EQ(list.GetValue("[0]", nullptr, 0), OAM_SUCCESS);
}

TEST_F(KeywordTrap, ListOfNumbersAnswersLikeOneOfTexts) {
    char buffer[32] = "untouched";
    EXPECT_EQ(list.GetNumber("[0]", buffer, 11), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(list.GetNumber("[0]", buffer, 12), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "-5");
    EXPECT_EQ(list.GetNumber(".count", buffer, 12), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "2");
    EXPECT_EQ(list.GetNumber("[2]", buffer, 12), OAMERR_NOT_FOUND);
    EXPECT_EQ(list.GetNumber("", buffer, 12), OAMERR_NOT_FOUND);
}

TEST_F(KeywordTrap, WithoutListsHasEmptyOnes) {
    char buffer[32] = "untouched";
    EXPECT_EQ(bare.GetValue(".Count", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "0");
    EXPECT_EQ(bare.GetValue("[0]", buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(bare.GetNumber("[0]", buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(bare.GetNumber(".Count", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_EQ(Qualifier(bare, "", "Description"), "");
    EXPECT_EQ(Qualifier(bare, "[0]", "Type"), "String");
}

TEST_F(KeywordTrap, ListDescribesItself) {
    EXPECT_EQ(Qualifier(list, "", "DESCRIPTION"), "a description");
    EXPECT_EQ(Qualifier(list, "", "Type"), "Array");
    EXPECT_EQ(Qualifier(list, "", "readonly"), "Yes");
    EXPECT_EQ(Qualifier(list, "", "Keywords.Count"), "(none)");
    EXPECT_EQ(Qualifier(list, "", "Keywords[0]"), "(none)");
    EXPECT_EQ(Qualifier(list, "", "Max"), "(none)");
}

TEST_F(KeywordTrap, StructureNamesItsMembers) {
    EXPECT_EQ(Qualifier(structure, "", "Type"), "Struct");
    EXPECT_EQ(Qualifier(structure, "", "keywords.count"), "2");
    EXPECT_EQ(Qualifier(structure, "", "Keywords[0]"), "First");
    EXPECT_EQ(Qualifier(structure, "", "KEYWORDS[1]"), "Second");
    for (const char* none : {"Keywords[2]", "Keywords[-1]", "Keywords[]", "Keywords[x]",
                             "Keywords[0", "Keywords", "Keywords0]"}) {
        EXPECT_EQ(Qualifier(structure, "", none), "(none)") << none;
    }
    char buffer[16];
    EXPECT_EQ(structure.GetQualifier("", "Keywords.Count", buffer, 11), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(structure.GetQualifier("", "Keywords.Count", nullptr, 0), OAM_SUCCESS);
}

TEST_F(KeywordTrap, CountIsAnIntegerThatIsRead) {
    EXPECT_EQ(Qualifier(list, ".count", "Type"), "Integer");
    EXPECT_EQ(Qualifier(list, ".Count", "ReadOnly"), "Yes");
    EXPECT_EQ(Qualifier(list, ".Count", "Description"), "(none)");
}

TEST_F(KeywordTrap, ElementHasItsTypeWhateverItsIndex) {
    for (const char* element : {"[0]", "[99]", "[x", "["}) {
        EXPECT_EQ(Qualifier(list, element, "Type"), "Object") << element;
        EXPECT_EQ(Qualifier(list, element, "ReadOnly"), "Yes") << element;
        EXPECT_EQ(Qualifier(list, element, "Description"), "(none)") << element;
    }
}

TEST_F(KeywordTrap, AnyOtherRestHasNoQualifiers) {
    EXPECT_EQ(Qualifier(list, ".Major", "Type"), "(none)");
    EXPECT_EQ(Qualifier(list, ".", "ReadOnly"), "(none)");
}

TEST(BracketIndex, ReadsADecimalNumberUpToItsBracket) {
    const char* after = "";
    EXPECT_EQ(bracketIndex("Keywords[12].x", "Keywords[", &after), 12);
    EXPECT_STREQ(after, ".x");
    EXPECT_EQ(bracketIndex("keywords[0]", "Keywords[", nullptr), 0);
    EXPECT_EQ(bracketIndex("[2147483647]", "[", nullptr), 2147483647);
    for (const char* none : {"[2147483648]", "[18446744073709551617]", "[+1]", "[ 1]", "[1 ]", "[",
                             "1]", ""}) {
        EXPECT_EQ(bracketIndex(none, "[", nullptr), -1) << none;
    }
}

}  // namespace
}  // namespace oam::test
