#include "data_file.h"

#include <gtest/gtest.h>

#include "support/data_file.h"

namespace oam::test {
namespace {

// An object data file whose root holds the text.
std::string withRoot(const std::string& text) {
    return "<OA&M Configuration ver. 1.0 - Object>" + text +
           "</OA&M Configuration ver. 1.0 - Object>";
}

oam::DataFile read(const std::string& content) { return ReadDataFile(content, kObjectRoot); }

// The only keyword's value; the file must have no mistake.
std::string valueIn(const std::string& element) {
    const auto file = read(withRoot("<B>" + element + "<Last>x</></B>"));
    EXPECT_FALSE(file.mistake) << file.mistake->text;
    if (file.objects.size() != 1 || file.objects[0].entries.size() != 2) return "(no keyword)";
    return file.objects[0].entries[0].name + '=' + file.objects[0].entries[0].value;
}

std::string mistakeIn(const std::string& content) {
    const auto file = read(content);
    if (!file.mistake) return "(none)";
    return std::to_string(file.mistake->at.line) + ':' + std::to_string(file.mistake->at.column) +
           ' ' + file.mistake->text;
}

}  // namespace

TEST(DataFileReader, ReadsWhatTheServiceWrites) {
    const auto file = read(test::DataFile("Board 1", StandardEntries("Board 1", "SIM-E1")));
    ASSERT_FALSE(file.mistake) << file.mistake->text;
    ASSERT_EQ(file.objects.size(), 1u);
    EXPECT_EQ(file.objects[0].name, "Board 1");
    ASSERT_EQ(file.objects[0].entries.size(), 5u);
    EXPECT_EQ(file.objects[0].entries[1].name, "Name?Description");
    EXPECT_EQ(file.objects[0].entries[1].value, "name of managed object");
    EXPECT_EQ(file.objects[0].entries[1].at.line, 5u);
    EXPECT_EQ(file.objects[0].entries[1].at.column, 7u);
}

TEST(DataFileReader, ReadsEveryObjectOfAnExport) {
    const std::string text =
        ExportFile({{"A", {{"Name", "A"}}}, {"B", {{"Name", "B"}, {"Number", "1"}}}});
    const auto file = ReadDataFile(text, kExportRoot);
    ASSERT_FALSE(file.mistake) << file.mistake->text;
    ASSERT_EQ(file.objects.size(), 2u);
    EXPECT_EQ(file.objects[1].Find("number")->value, "1");
    EXPECT_EQ(file.objects[1].at.line, 6u);
    EXPECT_EQ(file.objects[0].Find("Number"), nullptr);
}

TEST(DataFileReader, TakesNoNoticeOfWhiteSpaceAndOfHowAKeywordIsClosed) {
    EXPECT_EQ(valueIn("<Name>  Board 1 \t\n </>"), "Name=Board 1");
    EXPECT_EQ(valueIn("< \n Name \t>x</Name>"), "Name=x");
    EXPECT_EQ(valueIn("<Name>two\nlines</Name >"), "Name=two\nlines");
    EXPECT_EQ(valueIn("<Name></>"), "Name=");
    EXPECT_EQ(valueIn("<Name>   </Name>"), "Name=");
    EXPECT_EQ(valueIn("<Name>a > b</>"), "Name=a > b");
}

TEST(DataFileReader, SkipsCommentsAndInstructions) {
    EXPECT_EQ(valueIn("<!comment><?instruction?><Name><!-- why>x</>"), "Name=x");
    EXPECT_EQ(mistakeIn("<!a><?b>" + withRoot("<B><Name>x</></B>") + "<!c>"), "(none)");
}

TEST(DataFileReader, TakesAnElementWithOnlyACommentForNoKeyword) {
    const auto file = read(withRoot("<B><Gone><!c></><Name>x</></B>"));
    EXPECT_FALSE(file.mistake);
    ASSERT_EQ(file.objects.at(0).entries.size(), 1u);
    EXPECT_EQ(file.objects[0].entries[0].name, "Name");
}

TEST(DataFileReader, TellsWhereAMistakeIs) {
    EXPECT_EQ(mistakeIn("<OA&M Configuration ver. 1.0 - Object>\n"
                        "   <Board 1>\n"
                        "      <Name>Board 1</Nam>\n"),
              "3:20 \"</Nam>\" does not close \"<Name>\" of line 3");
    EXPECT_EQ(mistakeIn("<OA&M Configuration ver. 1.0>x"),
              "1:1 the root is \"OA&M Configuration ver. 1.0\" instead of "
              "\"OA&M Configuration ver. 1.0 - Object\"");
}

TEST(DataFileReader, RefusesTagsThatDoNotMatch) {
    EXPECT_EQ(mistakeIn(withRoot("<B>< Name >x</ Name></B>")),
              "1:51 \"</ Name>\" does not close \"<Name>\" of line 1");
    EXPECT_NE(mistakeIn(withRoot("<B><Name>x</></b>")), "(none)");
    EXPECT_NE(mistakeIn("</x>"), "(none)");
    EXPECT_NE(mistakeIn("<OA&M Configuration ver. 1.0 - Object><B><Name>x</></B></>"), "(none)");
    EXPECT_NE(mistakeIn(withRoot("<B><Name>x</></B>") + "<B>"), "(none)");
}

TEST(DataFileReader, RefusesEmptyAndUnfinishedTags) {
    for (const char* text : {"<", "<>", "< >", "<?", "<!x", "</", "<a"})
        EXPECT_NE(mistakeIn(text), "(none)") << text;
    EXPECT_NE(mistakeIn(withRoot("<B><>x</></B>")), "(none)");
}

TEST(DataFileReader, RefusesTextWhereNoKeywordIs) {
    EXPECT_EQ(mistakeIn("x<"), "1:1 a text outside of any keyword");
    EXPECT_EQ(mistakeIn(withRoot("x")), "1:39 a text outside of any keyword");
    EXPECT_EQ(mistakeIn(withRoot("<B>x</B>")), "1:42 a text outside of any keyword");
}

TEST(DataFileReader, RefusesObjectsWithoutKeywordsAndDirectoriesInObjects) {
    EXPECT_EQ(mistakeIn(withRoot("<B></B>")), "1:39 the object \"B\" has no keyword");
    EXPECT_EQ(mistakeIn(withRoot("<B><C><Name>x</></C></B>")),
              "1:45 the keyword \"Name\" stands in a directory inside of its object");
    EXPECT_EQ(mistakeIn(withRoot("<B><a\\b>x</></B>")), "1:42 a backslash in the name \"a\\\\b\"");
}

TEST(DataFileReader, RefusesAFileThatWasCutShort) {
    const std::string whole = test::DataFile("B", StandardEntries("B"));
    EXPECT_EQ(mistakeIn(whole), "(none)");
    for (size_t size = 0; size + 1 < whole.size(); ++size)
        EXPECT_NE(mistakeIn(whole.substr(0, size)), "(none)") << size;
}

TEST(DataFileReader, RefusesAFileInWhichNoKeywordHasAValue) {
    EXPECT_EQ(mistakeIn(withRoot("<B><Name></><Other></></B>")),
              "1:104 no keyword in the file has a value");
    EXPECT_NE(mistakeIn(withRoot("")), "(none)");
    EXPECT_NE(mistakeIn(""), "(none)");
}

TEST(DataFileReader, RefusesTokensAndPathsLongerThanTheServicesBuffers) {
    const auto value = [](size_t size) { return "<Name>" + std::string(size, 'x') + "</>"; };
    EXPECT_EQ(valueIn(value(2047)), "Name=" + std::string(2047, 'x'));
    EXPECT_NE(mistakeIn(withRoot("<B>" + value(2048) + "</B>")), "(none)");
    // White space behind a text counts until the next tag.
    EXPECT_NE(mistakeIn(withRoot("<B><Name>" + std::string(2047, 'x') + " </></B>")), "(none)");
    const auto keyword = [](size_t size) { return "<" + std::string(size, 'k') + ">x</>"; };
    EXPECT_EQ(valueIn(keyword(252)), std::string(252, 'k') + "=x");
    EXPECT_NE(mistakeIn(withRoot("<B>" + keyword(253) + "</B>")), "(none)");
}

TEST(DataFileReader, RefusesAZeroByte) {
    EXPECT_EQ(mistakeIn(withRoot(std::string("<B><Name>a\0b</></B>", 19))), "1:49 a zero byte");
}

TEST(DataFileReader, KeepsWhatStoodBeforeAMistake) {
    const auto file = read("<OA&M Configuration ver. 1.0 - Object><B><Name>x</><Number>1</Numb>");
    EXPECT_TRUE(file.mistake);
    ASSERT_EQ(file.objects.size(), 1u);
    EXPECT_EQ(file.objects[0].entries.size(), 2u);
}

TEST(DataFileReader, SurvivesAnyBytes) {
    unsigned seed = 1;
    const std::string alphabet = "<>/!?ab \n\\\xff";
    for (int round = 0; round < 2000; ++round) {
        std::string text = round % 2 ? "<OA&M Configuration ver. 1.0 - Object>" : "";
        for (int i = 0; i < 60; ++i) {
            seed = seed * 1103515245 + 12345;
            text += alphabet[(seed >> 16) % alphabet.size()];
        }
        EXPECT_TRUE(read(text).mistake) << text;
    }
}

}  // namespace oam::test
