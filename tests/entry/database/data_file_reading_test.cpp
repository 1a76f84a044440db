// What the reader of data files accepts, and what makes a whole file invalid.
//
// A file is shown to the service as the start-up scan finds it: an accepted one is an object with
// its keywords, an invalid one is renamed.
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;

constexpr const char* kFile = "Obj0.xmo";
constexpr const char* kBegin = "<OA&M Configuration ver. 1.0 - Object>";
constexpr const char* kEnd = "</OA&M Configuration ver. 1.0 - Object>";

class DataFileReading : public ServiceTest {
  protected:
    static std::string Document(const std::string& content) { return kBegin + content + kEnd; }
    // A document of one object "Thing" that always has a keyword with a text.
    static std::string Thing(const std::string& content) {
        return Document("<Thing><Name>Thing</>" + content + "</Thing>");
    }

    void Show(const std::string& bytes) {
        EXPECT_EQ(_oamExit(), OAM_SUCCESS);
        home.Remove("oam/cfg");
        home.MakeDirectory("oam/cfg");
        home.WriteDataFile(kFile, bytes);
        ASSERT_EQ(_oamInit(), OAM_SUCCESS) << bytes;
    }

    void ExpectInvalid(const std::string& bytes) {
        SCOPED_TRACE(bytes.substr(0, 2000));
        Show(bytes);
        EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.bak", "Super.xmo"));
        EXPECT_EQ(home.Read("oam/cfg/Obj0.bak"), bytes);
        EXPECT_THAT(Objects(), ElementsAre("Supervisor"));
    }

    // Accepted, with these entries in their order.
    void ExpectEntries(const std::string& bytes, const Entries& expected) {
        SCOPED_TRACE(bytes.substr(0, 2000));
        Show(bytes);
        EXPECT_THAT(home.List("oam/cfg"), ElementsAre(kFile, "Super.xmo"));
        ASSERT_THAT(Objects(), ElementsAre("Supervisor", "Thing"));
        const unsigned long handle = DbOpen("Thing");
        Entries found;
        for (const std::string& name : EntryNames(handle)) {
            found.emplace_back(name, DbGetKeyword(handle, name).text);
        }
        EXPECT_EQ(found, expected);
        EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    }
    // The same for an entry "Key" beside the name.
    void ExpectKey(const std::string& bytes, const std::string& value) {
        ExpectEntries(bytes, {{"Key", value}, {"Name", "Thing"}});
    }
};

TEST_F(DataFileReading, ReadsWhatTheWriterWrites) {
    ExpectKey(DataFile("Thing", {{"Key", "value"}, {"Name", "Thing"}}), "value");
}

TEST_F(DataFileReading, NeedsNeitherDeclarationNorLinesNorIndentation) {
    ExpectKey(Thing("<Key>value</>"), "value");
}

TEST_F(DataFileReading, WhiteSpaceBetweenElementsDoesNotMatter) {
    const std::string blank = " \t\n\v\f\r\r\n\n  ";
    ExpectKey(blank + kBegin + blank + "<Thing>" + blank + "<Name>Thing</>" + blank +
                  "<Key>value</>" + blank + "</Thing>" + blank + kEnd + blank,
              "value");
}

TEST_F(DataFileReading, WhiteSpaceAroundATextIsLost) {
    ExpectKey(Thing("<Key> \t\n\v\f\r a  b \r\n\t </>"), "a  b");
}

TEST_F(DataFileReading, LineFeedsWithinATextStay) {
    ExpectKey(Thing("<Key>a\n\n b</>"), "a\n\n b");
}

TEST_F(DataFileReading, EmptyElementIsAnEmptyValue) {
    for (const char* element : {"<Key></>", "<Key></Key>", "<Key>   </>", "<Key>\n</Key>"}) {
        ExpectKey(Thing(element), "");
    }
}

TEST_F(DataFileReading, FirstKeywordMayBeEmpty) {
    ExpectKey(Document("<Thing><Key></><Name>Thing</></Thing>"), "");
}

TEST_F(DataFileReading, WhiteSpaceAroundATagsNameIsLost) {
    ExpectKey(Thing("< \tKey \n>value</>"), "value");
    ExpectKey(Thing("<Key>value</Key \n>"), "value");
    ExpectKey(Thing("<Key>value</ >"), "value");
    ExpectKey(Thing("<Key>value< /Key>"), "value");
}

TEST_F(DataFileReading, WhiteSpaceAfterTheSlashIsPartOfTheName) {
    ExpectInvalid(Thing("< Key >value</ Key>"));
}

TEST_F(DataFileReading, EndTagMayRepeatTheNameExactly) {
    ExpectKey(Thing("<Key>value</Key>"), "value");
    ExpectInvalid(Thing("<Key>value</KEY>"));
    ExpectInvalid(Thing("<Key>value</Name>"));
}

TEST_F(DataFileReading, ObjectsEndTagMayBeEmptyToo) {
    ExpectEntries(Document("<Thing><Name>Thing</></>"), {{"Name", "Thing"}});
    ExpectInvalid(Document("<Thing><Name>Thing</></thing>"));
}

TEST_F(DataFileReading, CommentsAndInstructionsAreSkippedAnywhere) {
    const std::string noise = "<!-- a < comment --><?an instruction?><!><?>< !x><\n?y>";
    ExpectKey(noise + kBegin + noise + "<Thing>" + noise + "<Name>" + noise + "Thing</>" + noise +
                  "<Key>value" + noise + "</>" + noise + "</Thing>" + noise + kEnd + noise,
              "value");
}

TEST_F(DataFileReading, CommentEndsAtItsFirstBracket) { ExpectInvalid(Thing("<!a > b>")); }

TEST_F(DataFileReading, TextsAreRaw) {
    ExpectKey(Thing("<Key>a > b &lt; \"c\" \\ /</>"), "a > b &lt; \"c\" \\ /");
    ExpectKey(Thing("<Key>\xFF\xA0\x85\xC3\xBC</>"), "\xFF\xA0\x85\xC3\xBC");
}

TEST_F(DataFileReading, DottedNamesBracketsAndQualifiersAreNamesLikeAllOthers) {
    ExpectEntries(Thing("<A.b[0].c>1</><A?Type>2</><With blank>3</>"),
                  {{"A.b[0].c", "1"}, {"A?Type", "2"}, {"Name", "Thing"}, {"With blank", "3"}});
}

TEST_F(DataFileReading, LaterEntryOfANameReplacesTheValue) {
    ExpectKey(Thing("<Key>1</><KEY>2</>"), "2");
}

TEST_F(DataFileReading, TextOf2047CharactersIsTheLongest) {
    const std::string longest(2047, 'x');
    ExpectKey(Thing("<Key>" + longest + "</>"), longest);
    ExpectInvalid(Thing("<Key>" + longest + "x</>"));
}

TEST_F(DataFileReading, TrailingWhiteSpaceCountsBeforeItIsRemoved) {
    ExpectKey(Thing("<Key>" + std::string(2000, 'x') + std::string(47, ' ') + "</>"),
              std::string(2000, 'x'));
    ExpectInvalid(Thing("<Key>" + std::string(2000, 'x') + std::string(48, ' ') + "</>"));
}

TEST_F(DataFileReading, LongestCommentCountsItsMark) {
    ExpectKey(Thing("<!" + std::string(2046, 'c') + "><Key>value</>"), "value");
    ExpectInvalid(Thing("<!" + std::string(2047, 'c') + "><Key>value</>"));
    ExpectInvalid(Thing("<?" + std::string(2047, 'c') + "><Key>value</>"));
}

TEST_F(DataFileReading, PathOfObjectAndKeywordHas255Characters) {
    const std::string longest(255 - std::string("\\Thing\\").size(), 'k');
    ExpectEntries(Thing("<" + longest + ">value</>"), {{longest, "value"}, {"Name", "Thing"}});
    ExpectInvalid(Thing("<" + longest + "k>value</>"));
    ExpectInvalid(Thing("<" + longest + "k></>"));
}

TEST_F(DataFileReading, RootMustBeTheObjectsExactly) {
    const std::string content = "<Thing><Name>Thing</></Thing>";
    ExpectInvalid("<OA&M Configuration ver. 1.0>" + content + "</OA&M Configuration ver. 1.0>");
    ExpectInvalid("<oa&m configuration ver. 1.0 - object>" + content +
                  "</oa&m configuration ver. 1.0 - object>");
    ExpectInvalid("<Root>" + content + "</Root>");
    ExpectInvalid(content);
    ExpectInvalid(kBegin + content + "</OA&M Configuration ver. 1.0>");
    ExpectInvalid(kBegin + content + "</>");
}

TEST_F(DataFileReading, EmptyTagIsAnError) { ExpectInvalid(Thing("<>value</>")); }

TEST_F(DataFileReading, TextOutsideEveryElementIsAnError) {
    ExpectInvalid("text" + Thing(""));
    ExpectInvalid(Thing("") + "text");
}

TEST_F(DataFileReading, AfterTheRootOnlyCommentsAndInstructionsMayCome) {
    ExpectEntries(Thing("") + "<!comment><?instruction>\n", {{"Name", "Thing"}});
    ExpectInvalid(Thing("") + "<Other>");
    ExpectInvalid(Thing("") + "</Other>");
    ExpectInvalid(Thing("") + "</>");
    ExpectInvalid(Thing("") + kEnd);
    ExpectInvalid(Thing("") + "<");
}

TEST_F(DataFileReading, KeptSecondRootOfTheSameNameIsReadOn) {
    ExpectKey(Thing("<Key>1</>") + Thing("<Key>2</>"), "2");
    ExpectInvalid(Thing("<Key>1</>") + "<OA&M Configuration ver. 1.0>");
}

TEST_F(DataFileReading, EndTagBeforeTheRootIsAnError) {
    ExpectInvalid("</>" + Thing(""));
    ExpectInvalid(kEnd + Thing(""));
}

TEST_F(DataFileReading, OneEndTagTooManyIsAnError) {
    ExpectInvalid(Document("<Thing><Name>Thing</></Thing></Thing>"));
    ExpectInvalid(Thing("<Key>value</></>") + kEnd);
}

TEST_F(DataFileReading, KeywordsOfTwoObjectsAreAnError) {
    ExpectInvalid(Document("<Thing><Name>Thing</></Thing><Other><Name>Other</></Other>"));
}

TEST_F(DataFileReading, KeywordNestedDeeperIsAnError) {
    ExpectInvalid(Thing("<Location><Bus>3</></Location>"));
}

TEST_F(DataFileReading, KeywordBesideTheObjectIsAnError) {
    ExpectInvalid(Document("<Thing><Name>Thing</></Thing><Key>value</>"));
}

TEST_F(DataFileReading, ObjectsNameIsTakenExactly) {
    ExpectInvalid(Document("<Thing><Name>Thing</></Thing><THING><Key>value</></THING>"));
}

TEST_F(DataFileReading, FileWithoutAnyKeywordIsInvalid) {
    ExpectInvalid("");
    ExpectInvalid("\n");
    ExpectInvalid("<?XML version=\"1.0\"?>\n");
    ExpectInvalid(Document(""));
    ExpectInvalid(Document("\n"));
    ExpectInvalid(Document("<!comment>"));
    ExpectInvalid(DataFile("Thing", {}));
}

TEST_F(DataFileReading, KeptFileOfEmptyValuesAloneIsInvalid) {
    ExpectInvalid(DataFile("Thing", {{"Key", ""}, {"Name", ""}}));
}

TEST_F(DataFileReading, FileThatEndsAnywhereBeforeItsEndIsInvalid) {
    const std::string whole = Thing("<Key>value</Key>");
    for (size_t length = 0; length < whole.size(); length += length < 40 ? 20 : 1) {
        ExpectInvalid(whole.substr(0, length));
    }
}

TEST_F(DataFileReading, NulByteAnywhereIsInvalid) {
    const std::string nul(1, '\0');
    ExpectInvalid(nul + Thing(""));
    ExpectInvalid(Thing("") + nul);
    ExpectInvalid(Thing(nul));
    ExpectInvalid(Thing("<Key>va" + nul + "lue</>"));
    ExpectInvalid(Thing("<Key>value" + nul + "</>"));
    ExpectInvalid(Thing("<Key" + nul + ">value</>"));
    ExpectInvalid(Thing("<Key>value</" + nul + ">"));
    ExpectInvalid(Thing("<!com" + nul + "ment>"));
    ExpectInvalid(Document("<Thing" + nul + "><Name>Thing</></Thing>"));
}

TEST_F(DataFileReading, NoiseIsInvalid) {
    ExpectInvalid("<<<>>>");
    ExpectInvalid(std::string(5000, '<'));
    ExpectInvalid(std::string(5000, 'x'));
    ExpectInvalid(
        "\x7F"
        "ELF\x02\x01\x01");
}

}  // namespace
}  // namespace oam::test
