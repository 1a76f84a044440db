// The reader's tokens, one at a time.
#include "config/xmo_reader.h"
#include "doors/room_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

using Kind = CXmlImport::eTokenType;
using Token = std::pair<Kind, std::string>;

constexpr Kind kInstruction = CXmlImport::kInstruction;
constexpr Kind kDeclaration = CXmlImport::kDeclaration;
constexpr Kind kBeginTag = CXmlImport::kBeginTag;
constexpr Kind kEndTag = CXmlImport::kEndTag;
constexpr Kind kText = CXmlImport::kText;
constexpr Kind kSyntaxError = CXmlImport::kSyntaxError;
constexpr Kind kReadError = CXmlImport::kReadError;
constexpr Kind kEndOfFile = CXmlImport::kEndOfFile;

class XmoToken : public RoomTest {
  protected:
    // Every token up to the end or an error, whose text plays no part.
    std::vector<Token> Tokens(const std::string& bytes) {
        home.Write("oam/cfg/x.xmo", bytes);
        CXmlImport reader;
        EXPECT_EQ(reader.Open(home.Path("oam/cfg/x.xmo").c_str(), "root"), 0);
        std::vector<Token> tokens;
        for (;;) {
            const Kind kind = reader.XmlGetToken();
            const bool last = kind >= kSyntaxError;
            tokens.emplace_back(kind, last ? "" : reader.Value());
            if (last) return tokens;
        }
    }
    Kind First(const std::string& bytes) { return Tokens(bytes).front().first; }
    std::string FirstText(const std::string& bytes) { return Tokens(bytes).front().second; }
};

TEST_F(XmoToken, KindsHaveTheirNumbers) {
    EXPECT_EQ(kInstruction, 1);
    EXPECT_EQ(kDeclaration, 2);
    EXPECT_EQ(kBeginTag, 3);
    EXPECT_EQ(kEndTag, 4);
    EXPECT_EQ(kText, 5);
    EXPECT_EQ(kSyntaxError, 6);
    EXPECT_EQ(kReadError, 7);
    EXPECT_EQ(kEndOfFile, 8);
}

TEST_F(XmoToken, EveryKindIsToldFromItsFirstCharacters) {
    EXPECT_THAT(Tokens("<?XML version=\"1.0\"?><!note><Name>text</Name></>"),
                ElementsAre(Pair(kInstruction, "?XML version=\"1.0\"?"), Pair(kDeclaration, "!note"),
                            Pair(kBeginTag, "Name"), Pair(kText, "text"), Pair(kEndTag, "Name"),
                            Pair(kEndTag, ""), Pair(kEndOfFile, "")));
}

TEST_F(XmoToken, MarkersOfInstructionsAndDeclarationsAreKept) {
    EXPECT_THAT(Tokens("<?><!>"), ElementsAre(Pair(kInstruction, "?"), Pair(kDeclaration, "!"),
                                              Pair(kEndOfFile, "")));
}

TEST_F(XmoToken, NothingButWhiteSpaceIsTheEnd) {
    EXPECT_EQ(First(""), kEndOfFile);
    EXPECT_EQ(First(" \t\n\v\f\r "), kEndOfFile);
}

TEST_F(XmoToken, ExactlySixCharactersAreWhite) {
    for (int character = 1; character < 256; ++character) {
        const bool white = strchr(" \t\n\v\f\r", character) != nullptr;
        const std::string around(1, static_cast<char>(character));
        if (around == "<") continue;
        const std::string expected = white ? "x" : around + "x" + around;
        EXPECT_EQ(FirstText(around + "x" + around + "<"), expected) << character;
    }
}

TEST_F(XmoToken, WhiteSpaceAroundATextIsCutAndInsideKept) {
    EXPECT_EQ(FirstText("  Board 1 \n  2\t</>"), "Board 1 \n  2");
}

TEST_F(XmoToken, WhiteSpaceIsSkippedAfterTheBracketButNotAfterTheSlash) {
    EXPECT_THAT(Tokens("< \n Name >x< / Name >"),
                ElementsAre(Pair(kBeginTag, "Name"), Pair(kText, "x"), Pair(kEndTag, " Name"),
                            Pair(kEndOfFile, "")));
    EXPECT_THAT(Tokens("< !note >< ?i>"), ElementsAre(Pair(kDeclaration, "!note"),
                                                      Pair(kInstruction, "?i"),
                                                      Pair(kEndOfFile, "")));
}

TEST_F(XmoToken, EmptyEndTagMayHoldWhiteSpace) {
    EXPECT_THAT(Tokens("</ \n>"), ElementsAre(Pair(kEndTag, ""), Pair(kEndOfFile, "")));
}

TEST_F(XmoToken, EmptyBeginTagIsAnError) {
    EXPECT_EQ(First("<>"), kSyntaxError);
    EXPECT_EQ(First("<   >"), kSyntaxError);
}

TEST_F(XmoToken, TagHoldsWhateverIsNotItsTerminator) {
    EXPECT_THAT(Tokens("<a<b/c=\"d\">"),
                ElementsAre(Pair(kBeginTag, "a<b/c=\"d\""), Pair(kEndOfFile, "")));
    EXPECT_EQ(FirstText("a>b</>"), "a>b");
}

TEST_F(XmoToken, UnterminatedTokenIsAnError) {
    for (const char* bytes : {"<", "<  ", "<Name", "</", "</Name", "<!x", "<?", "text"}) {
        EXPECT_EQ(First(bytes), kSyntaxError) << bytes;
    }
}

TEST_F(XmoToken, LongestHas2047Characters) {
    for (const auto& [before, after] : {std::pair("", "<"), std::pair("<", ">"),
                                        std::pair("</", ">")}) {
        EXPECT_EQ(FirstText(before + std::string(2047, 'x') + after), std::string(2047, 'x'));
        EXPECT_EQ(First(before + std::string(2048, 'x') + after), kSyntaxError);
    }
    EXPECT_EQ(FirstText("<!" + std::string(2046, 'x') + ">").size(), 2047u) << "with its marker";
    EXPECT_EQ(First("<!" + std::string(2047, 'x') + ">"), kSyntaxError);
}

TEST_F(XmoToken, TrailingWhiteSpaceCountsBeforeItIsCut) {
    EXPECT_EQ(FirstText("x" + std::string(2046, ' ') + "<"), "x");
    EXPECT_EQ(First("x" + std::string(2047, ' ') + "<"), kSyntaxError);
    EXPECT_EQ(FirstText(std::string(5000, ' ') + "x<"), "x") << "leading white space does not";
}

TEST_F(XmoToken, Byte255IsACharacterAndNotTheEnd) {
    EXPECT_THAT(Tokens("<\xFF>\xFF\xFE</\xFF>"),
                ElementsAre(Pair(kBeginTag, "\xFF"), Pair(kText, "\xFF\xFE"), Pair(kEndTag, "\xFF"),
                            Pair(kEndOfFile, "")));
}

TEST_F(XmoToken, NulByteIsAnError) {
    EXPECT_EQ(First(std::string("te\0xt<", 6)), kSyntaxError);
    EXPECT_EQ(First(std::string("<Na\0me>", 7)), kSyntaxError);
    EXPECT_EQ(First(std::string("\0", 1)), kSyntaxError);
    EXPECT_EQ(First(std::string("</\0>", 4)), kSyntaxError);
}

TEST_F(XmoToken, StreamThatCannotBeReadIsAReadError) {
    CXmlImport reader;
    ASSERT_EQ(reader.Open(home.Path("oam/cfg").c_str(), "root"), 0) << "a directory opens";
    EXPECT_EQ(reader.XmlGetToken(), kReadError);
    EXPECT_EQ(reader.XmlGetToken(), kReadError);
}

}  // namespace
}  // namespace oam::test
