// Answers that are no texts: buffers filled to the last byte without a NUL, success without a word,
// and characters that a data file cannot keep.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "figures.h"
#include "oam/entry.h"
#include "support/objects.h"
#include "trial.h"

namespace oam::torture {
namespace {

constexpr std::size_t kQuickOneIn = 2;

// What a plug-in does with the buffer for one of its keywords.
using Fill = void (*)(char* buffer, unsigned size);

struct Filling {
    const char* name;
    Fill fill;
};

const Filling kFillings[] = {
    {"full of letters", [](char* buffer, unsigned size) { std::memset(buffer, 'x', size); }},
    {"full of digits", [](char* buffer, unsigned size) { std::memset(buffer, '9', size); }},
    {"full of bytes that are no characters",
     [](char* buffer, unsigned size) { std::memset(buffer, 0xFF, size); }},
    {"nothing written", [](char*, unsigned) {}},
};

const char* const kKeywords[] = {
    "Products.Count",
    "Products[0]",
    "DetectedBoards.Count",
    "DetectedBoards[0].Name",
    "DetectedBoards[0].Product",
    "DetectedBoards[0].Location.PCI.Bus",
    "DetectedBoards[0].Location.PCI.Slot",
};

unsigned answerRest(const std::string& asked, char* buffer, unsigned size) {
    const std::string text = asked.ends_with(".Count") ? "1"
                             : asked.ends_with("Slot") ? "4"
                                                       : kProduct;
    if (text.size() >= size) return OAMERR_NOT_ENOUGH_MEMORY;
    return text.copy(buffer, size), buffer[text.size()] = '\0', OAM_SUCCESS;
}

void fillOne(World& world, const std::string& keyword, Fill fill) {
    world.recorder.Script(kPlugin, [=](test::ModuleScript& script) {
        script.getKeyword = [=](unsigned long, const char* asked, char* buffer,
                                unsigned size) -> unsigned {
            if (asked != keyword) return answerRest(asked, buffer, size);
            fill(buffer, size);
            return OAM_SUCCESS;
        };
    });
}

// Every text of the Supervisor's lists is one that fits.
void expectShortTexts(const std::string& list, const char* member) {
    for (int i = 0; i < 3; ++i) {
        const std::string keyword = list + '[' + std::to_string(i) + ']' + member;
        const test::Answer answer = test::KeywordOf("Supervisor", keyword);
        if (answer.code != OAM_SUCCESS) return;
        EXPECT_LE(answer.text.size(), 127u) << keyword;
    }
}

TEST(UnterminatedText, IsCutWhereTheServiceReadsIt) {
    const std::size_t points = std::size(kKeywords) * std::size(kFillings);
    CountPoints(points);
    for (const std::size_t i : ShareOf(points, kQuickOneIn, 0)) {
        const char* keyword = kKeywords[i / std::size(kFillings)];
        const Filling& filling = kFillings[i % std::size(kFillings)];
        TryCase(std::string(keyword) + ' ' + filling.name, &FurnishWorld,
                [&](const test::Installation& home, const Watched& watched) {
                    World world(home);
                    fillOne(world, keyword, filling.fill);
                    watched.Doing("a start");
                    const unsigned started = _oamInit();
                    // A product of thousands that are all the same is one too many.
                    EXPECT_TRUE(started == OAM_SUCCESS || started == OAMERR_ALREADY_EXISTS)
                        << NameOfCode(started);
                    watched.Doing("a detection");
                    const unsigned detected = _oamDetectBoards();
                    EXPECT_TRUE(detected == OAM_SUCCESS || detected == OAMERR_SERVER_NOT_RUNNING);
                    if (started == OAM_SUCCESS) {
                        expectShortTexts("Products", "");
                        expectShortTexts("DetectedBoards", ".Name");
                        expectShortTexts("DetectedBoards", ".Product");
                    }
                    const unsigned added = _oamAddDetectedBoard(nullptr);
                    EXPECT_TRUE(IsDocumented(added) || added == 7) << NameOfCode(added);
                    watched.Doing("a look around afterwards");
                    world.recorder.Script(
                        kPlugin, [](test::ModuleScript& script) { script.getKeyword = nullptr; });
                    world.ExpectStanding();
                });
    }
}

// As a client reads it; the bytes are the plug-in's, but none is written behind the buffer.
TEST(UnterminatedText, StaysInsideTheClientsBuffer) {
    const unsigned sizes[] = {0, 1, 2, 127, 128, 4096};
    CountPoints(std::size(sizes));
    for (const unsigned size : sizes) {
        TryCase("a client's buffer of " + std::to_string(size), &FurnishWorld,
                [&](const test::Installation& home, const Watched&) {
                    World world(home);
                    world.Start();
                    fillOne(world, "Gain", kFillings[0].fill);
                    std::vector<char> buffer(size + 1, '!');
                    const unsigned long handle = test::Open(kBoard);
                    EXPECT_EQ(_oamGetKeyword(handle, "Gain", buffer.data(), size), OAM_SUCCESS);
                    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
                    EXPECT_EQ(buffer.back(), '!');
                    world.recorder.Script(
                        kPlugin, [](test::ModuleScript& script) { script.getKeyword = nullptr; });
                    world.ExpectStanding();
                });
    }
}

// Names that a data file, a path or a format would take for something else.
const char* const kOddNames[] = {
    "%s%n%d", "a<b",  "a>b",   "</>",      "a/b",        "../up",    "a\\b",    "?",
    "a?Type", "a[0]", "a.bpi", "a.emc",    "Supervisor", " lead",    "trail ",  " ",
    "\t",     "a\nb", "\x01",  "\xff\xfe", "\xc3\xa9",   "<!-- -->", "<?xml?>", "\"",
    "&amp;",  ".",    "..",    "a\rb",     "CON",        "*",        "$HOME",   "`",
};

// Kept: their data files are written as they are, and the next start sets them aside.
bool isSetAside(const std::string& name) {
    const auto isWhite = [](char character) { return std::strchr(" \t\n\v\f\r", character); };
    return !name.empty() &&
           (std::strchr("?!/", name.front()) || isWhite(name.front()) || isWhite(name.back()));
}

void expectTheSameAfterARestart(const test::Installation& home, const std::string& board) {
    auto objects = test::Objects();
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    if (isSetAside(board) && std::erase(objects, board) != 0) {
        for (const std::string& file : home.List("oam/cfg"))
            if (file.ends_with(".bak")) home.Remove("oam/cfg/" + file);
    }
    EXPECT_EQ(test::Objects(), objects);
}

TEST(OddName, OfAProductMakesABoardThatLastsOrNone) {
    CountPoints(std::size(kOddNames));
    for (const std::size_t i : ShareOf(std::size(kOddNames), kQuickOneIn, 0)) {
        const std::string product = kOddNames[i];
        TryCase("product \"" + product + '"', &FurnishWorld,
                [&](const test::Installation& home, const Watched& watched) {
                    World world(home);
                    world.recorder.Script(kGoodPlugin, [&](test::ModuleScript& script) {
                        script.products = {"Good", product};
                    });
                    world.Start();
                    watched.Doing("a creation");
                    char board[128] = "";
                    const unsigned created = _oamCreateBoard(product.c_str(), board, sizeof board);
                    EXPECT_TRUE(IsDocumented(created) || created == 7) << NameOfCode(created);
                    expectTheSameAfterARestart(home, board);
                    watched.Doing("a look around afterwards");
                    world.ExpectStanding();
                });
    }
}

TEST(OddName, OfADetectedBoardIsKeptOrRefused) {
    CountPoints(std::size(kOddNames));
    for (const std::size_t i : ShareOf(std::size(kOddNames), kQuickOneIn, 1)) {
        const std::string name = kOddNames[i];
        TryCase("detected \"" + name + '"', &FurnishWorld,
                [&](const test::Installation& home, const Watched& watched) {
                    World world(home);
                    world.recorder.Script(kPlugin, [&](test::ModuleScript& script) {
                        script.detected = {{name, kProduct, "3", "4"}};
                    });
                    world.Start();
                    watched.Doing("a detection");
                    EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
                    const unsigned added = _oamAddDetectedBoard(name.c_str());
                    EXPECT_TRUE(IsDocumented(added) || added == 7) << NameOfCode(added);
                    expectTheSameAfterARestart(home, name);
                    watched.Doing("a look around afterwards");
                    world.ExpectStanding();
                });
    }
}

}  // namespace
}  // namespace oam::torture
