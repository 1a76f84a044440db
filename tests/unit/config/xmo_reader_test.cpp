// Keyword by keyword through a file: names, values, directories, and what makes a file invalid.
#include "config/xmo_reader.h"

#include "doors/room_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Kind = CXmlImport::eTokenType;

struct Read {
    std::vector<std::string> keywords;  // "directory|name|value"
    Kind end = CXmlImport::kText;
};

class XmoReader : public RoomTest {
  protected:
    Read ReadAll(const std::string& bytes, const char* root = "root") {
        home.Write("oam/cfg/x.xmo", bytes);
        CXmlImport reader;
        EXPECT_EQ(reader.Open(home.Path("oam/cfg/x.xmo").c_str(), root), 0);
        Read read;
        while ((read.end = reader.GetNextKeyword()) == CXmlImport::kText) {
            read.keywords.push_back(std::string(reader.Directory()) + "|" + reader.Keyword() + "|" +
                                    reader.Value());
        }
        EXPECT_EQ(reader.Close(), 0);
        return read;
    }
    void ExpectValid(const std::string& bytes, const std::vector<std::string>& keywords) {
        SCOPED_TRACE(bytes.substr(0, 200));
        const Read read = ReadAll(bytes);
        EXPECT_EQ(read.end, CXmlImport::kEndOfFile);
        EXPECT_EQ(read.keywords, keywords);
    }
    void ExpectInvalid(const std::string& bytes) {
        SCOPED_TRACE(bytes.substr(0, 200));
        EXPECT_EQ(ReadAll(bytes).end, CXmlImport::kSyntaxError);
    }
};

TEST_F(XmoReader, GivesEachKeywordWithItsDirectory) {
    ExpectValid("<?XML version=\"1.0\"?><root><A><x>1</><y>2</></A><B><x>3</></B></root>",
                {"\\A|x|1", "\\A|y|2", "\\B|x|3"});
}

TEST_F(XmoReader, NamesTheObjectWithoutTheFirstBackslash) {
    home.Write("oam/cfg/x.xmo", "<root><Board 1><x>1</></Board 1></root>");
    CXmlImport reader;
    ASSERT_EQ(reader.Open(home.Path("oam/cfg/x.xmo").c_str(), "root"), 0);
    EXPECT_STREQ(reader.ObjectName(), "");
    EXPECT_EQ(reader.GetNextKeyword(), CXmlImport::kText);
    EXPECT_STREQ(reader.ObjectName(), "Board 1");
}

TEST_F(XmoReader, EndTagsMayRepeatTheNameOrBeEmpty) {
    ExpectValid("<root><A><x>1</x><y>2</></></root>", {"\\A|x|1", "\\A|y|2"});
    ExpectInvalid("<root><A><x>1</X></A></root>");
    ExpectInvalid("<root><A><x>1</></a></root>");
}

TEST_F(XmoReader, RootMustBeExact) {
    EXPECT_EQ(ReadAll("<Root><A><x>1</></A></Root>").end, CXmlImport::kSyntaxError);
    ExpectInvalid("<root><A><x>1</></A></Root>");
    ExpectInvalid("<root><A><x>1</></A></>");
    EXPECT_EQ(ReadAll("<OA&M Configuration ver. 1.0><A><x>1</></A></OA&M Configuration ver. 1.0>",
                      "OA&M Configuration ver. 1.0 - Object")
                  .end,
              CXmlImport::kSyntaxError);
}

TEST_F(XmoReader, EmptyElementIsAKeywordWithAnEmptyValue) {
    ExpectValid("<root><A><e></><f></f><g>   </><x>1</></A></root>",
                {"\\A|e|", "\\A|f|", "\\A|g|", "\\A|x|1"});
}

TEST_F(XmoReader, KeptFileOfEmptyValuesOnlyIsInvalid) {
    const Read read = ReadAll("<root><A><x></><y></></A></root>");
    EXPECT_THAT(read.keywords, ElementsAre("\\A|x|", "\\A|y|"));
    EXPECT_EQ(read.end, CXmlImport::kSyntaxError);
}

TEST_F(XmoReader, FileWithoutKeywordsIsInvalid) {
    for (const char* bytes : {"", "<?XML?>", "<root></root>", "<root>", "<!x>"}) {
        ExpectInvalid(bytes);
    }
}

TEST_F(XmoReader, EmptyObjectReadsAsAKeywordOfItsNameAndTheFileIsInvalid) {
    const Read read = ReadAll("<root>\n   <Board 1>\n   </Board 1>\n</root>\n");
    EXPECT_THAT(read.keywords, ElementsAre("|Board 1|"));
    EXPECT_EQ(read.end, CXmlImport::kSyntaxError);
}

TEST_F(XmoReader, CommentsAndInstructionsAreSkippedAnywhere) {
    ExpectValid("<!a><root><?b><A><!c><x><!d>1<!e></><!f></A><?g></root><!h>", {"\\A|x|1"});
}

TEST_F(XmoReader, CommentInAnEmptyElementHidesIt) {
    ExpectValid("<root><A><e><!note></><x>1</></A></root>", {"\\A|x|1"});
}

TEST_F(XmoReader, TextAroundACommentIsReadTwice) {
    ExpectValid("<root><A><x>1<!note>2</></A></root>", {"\\A|x|1", "\\A|x|2"});
}

TEST_F(XmoReader, TextOutsideAnElementIsInvalid) {
    ExpectInvalid("text<root><A><x>1</></A></root>");
    ExpectInvalid("<root>text<A><x>1</></A></root>");
    ExpectInvalid("<root><A><x>1</></A></root>text<");
}

TEST_F(XmoReader, TextOfADirectoryIsAKeywordOfTheRoot) {
    ExpectValid("<root><A>1<x>2</></A></root>", {"|A|1", "\\A|x|2"});
}

TEST_F(XmoReader, UnbalancedTagsAreInvalid) {
    ExpectInvalid("</root>");
    ExpectInvalid("</>");
    ExpectInvalid("<root><A><x>1</></A></root></root>");
    ExpectInvalid("<root><A><x>1</></A>");
    ExpectInvalid("<root><A><x>1</></root>");
    ExpectInvalid("<root><A><x>1</></A></root><A>");
}

TEST_F(XmoReader, SecondRootMustBeTheRootAgain) {
    ExpectValid("<root><A><x>1</></A></root><root><B><y>2</></B></root>", {"\\A|x|1", "\\B|y|2"});
    ExpectInvalid("<root><A><x>1</></A></root><other></other>");
}

TEST_F(XmoReader, DeeperDirectoriesAreInThePath) {
    ExpectValid("<root><A><B><x>1</></B><y>2</></A></root>", {"\\A\\B|x|1", "\\A|y|2"});
}

TEST_F(XmoReader, PathHolds255Characters) {
    const std::string object(100, 'o');
    const auto document = [&](size_t length) {
        const std::string keyword(length, 'k');
        return "<root><" + object + "><" + keyword + ">1</></" + object + "></root>";
    };
    EXPECT_EQ(ReadAll(document(153)).end, CXmlImport::kEndOfFile);
    EXPECT_EQ(ReadAll(document(154)).end, CXmlImport::kSyntaxError);
}

TEST_F(XmoReader, NameWithABackslashIsADirectoryAndAKeyword) {
    const Read read = ReadAll("<root><A><b\\c>1</></A></root>");
    EXPECT_THAT(read.keywords, ElementsAre("\\A\\b|c|1"));
    EXPECT_EQ(read.end, CXmlImport::kSyntaxError) << "its end tag takes one component only";
}

TEST_F(XmoReader, AnErrorStaysAnErrorOfTheFile) {
    home.Write("oam/cfg/x.xmo", "<root><A><x>1</y></A></root>");
    CXmlImport reader;
    ASSERT_EQ(reader.Open(home.Path("oam/cfg/x.xmo").c_str(), "root"), 0);
    EXPECT_EQ(reader.GetNextKeyword(), CXmlImport::kText);
    EXPECT_EQ(reader.GetNextKeyword(), CXmlImport::kSyntaxError);
}

TEST_F(XmoReader, ReadErrorIsToldApart) {
    CXmlImport reader;
    ASSERT_EQ(reader.Open(home.Path("oam/cfg").c_str(), "root"), 0);
    EXPECT_EQ(reader.GetNextKeyword(), CXmlImport::kReadError);
}

TEST_F(XmoReader, StartsAfreshWhenItIsOpenedAgain) {
    home.Write("oam/cfg/x.xmo", "<root><A><x>1</></A></root>");
    CXmlImport reader;
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(reader.Open(home.Path("oam/cfg/x.xmo").c_str(), "root"), 0);
        EXPECT_EQ(reader.GetNextKeyword(), CXmlImport::kText);
        EXPECT_STREQ(reader.Directory(), "\\A");
        EXPECT_EQ(reader.Close(), 0);
    }
}

TEST_F(XmoReader, FileThatIsNotThereCannotBeOpened) {
    CXmlImport reader;
    EXPECT_EQ(reader.Open(home.Path("oam/cfg/none.xmo").c_str(), "root"), -1);
    EXPECT_EQ(reader.Close(), 0) << "nothing to close";
}

}  // namespace
}  // namespace oam::test
