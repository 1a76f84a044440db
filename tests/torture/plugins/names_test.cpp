// Names and texts that modules bring in, of every length from 1 to 255 and of characters that mean
// something elsewhere: kept whole and found again after a restart, or refused with a code.
#include <gtest/gtest.h>

#include "figures.h"
#include "oam/entry.h"
#include "oam/shadow.h"
#include "support/objects.h"
#include "trial.h"

namespace oam::torture {
namespace {

constexpr std::size_t kMostBytes = 255;
constexpr std::size_t kQuickOneIn = 13;
constexpr std::size_t kLongestName = 127;  // with its NUL in 128 bytes

// "abc...xyzabc...", so that a cut or a shift shows.
std::string textOf(std::size_t bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes; ++i) text += static_cast<char>('a' + i % 26);
    return text;
}

std::vector<std::string> boards() {
    std::vector<std::string> names;
    char name[512];
    for (int i = 0; _oamBoardEnum(i, name, sizeof name) == OAM_SUCCESS; ++i) names.push_back(name);
    return names;
}

bool isBoard(const std::string& name) {
    unsigned number = 0;
    return _oamBoardGetNumber(name.c_str(), &number) == OAM_SUCCESS;
}

// It can be used, and is there again after a restart.
void expectWhole(const std::string& board) {
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(isBoard(board)) << board;
        EXPECT_EQ(test::KeywordOf(board, "Name"), test::Is(board));
        EXPECT_EQ(_oamStartBoard(board.c_str(), OAM_SYNCHRONIZED), OAM_SUCCESS);
        unsigned number = 0;
        EXPECT_EQ(oamShadowBoardGetNumber(0, board.c_str(), &number), OAM_SUCCESS);
        if (i == 0) {
            EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
        }
    }
}

void expectAbsent(const std::vector<std::string>& before) {
    EXPECT_EQ(boards(), before);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(boards(), before);
}

// ---- What is made of the name

using Body = void (*)(World&, const std::string& name);

void serveProduct(World& world, const std::string& product) {
    world.recorder.Script(kGoodPlugin, [&](test::ModuleScript& script) {
        script.products = {"Good", product};
    });
    const bool isRead = product.size() <= kLongestName;
    EXPECT_EQ(NameOfCode(_oamInit()), isRead ? "success" : "OAMERR_NOT_ENOUGH_MEMORY");
    if (!isRead) {
        world.recorder.Script(kGoodPlugin,
                              [](test::ModuleScript& script) { script.products = {"Good"}; });
        return;
    }
    const auto before = boards();
    char board[512] = "";
    const unsigned created = _oamCreateBoard(product.c_str(), board, sizeof board);
    EXPECT_TRUE(IsDocumented(created)) << NameOfCode(created);
    const bool isKept = product.size() + 2 <= kLongestName;
    EXPECT_EQ(created == OAM_SUCCESS, isKept) << NameOfCode(created);
    if (created == OAM_SUCCESS) {
        EXPECT_EQ(board, product + " 0");
        expectWhole(board);
    } else {
        expectAbsent(before);
    }
}

void detect(World& world, const std::string& name) {
    world.recorder.Script(kPlugin, [&](test::ModuleScript& script) {
        script.detected = {{name, kProduct, "3", "4"}};
    });
    world.Start();
    const auto before = boards();
    EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    const unsigned added = _oamAddDetectedBoard(name.c_str());
    const bool isRead = name.size() <= kLongestName;
    EXPECT_EQ(NameOfCode(added), isRead ? "success" : "OAMERR_NOT_FOUND");
    if (added == OAM_SUCCESS) {
        expectWhole(name);
    } else {
        expectAbsent(before);
    }
}

void detectProduct(World& world, const std::string& product) {
    world.recorder.Script(kPlugin, [&](test::ModuleScript& script) {
        script.detected = {{"Found", product, "3", "4"}};
    });
    world.Start();
    const auto before = boards();
    EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    // Nobody serves it, if it leaves room for a board's number at all.
    const bool isNamed = product.size() > kLongestName || product.size() + 13 <= 128;
    EXPECT_EQ(NameOfCode(_oamAddDetectedBoard("Found")),
              isNamed ? "OAMERR_NOT_FOUND" : "OAMERR_NOT_ENOUGH_MEMORY");
    expectAbsent(before);
}

void rename(World& world, const std::string& name) {
    world.Start();
    const unsigned renamed = test::Change(kGoodBoard, "Name", name);
    const bool isKept = name.size() <= kLongestName;
    EXPECT_EQ(NameOfCode(renamed), isKept ? "success" : "OAMERR_NOT_ENOUGH_MEMORY");
    expectWhole(isKept ? name : kGoodBoard);
}

// Stored by the plug-in while it creates the board.
void keepSerialNumber(World& world, const std::string& text) {
    world.recorder.Script(kPlugin, [&](test::ModuleScript& script) {
        script.boardKeywords = {{"Eeprom.SerialNum", text}};
    });
    world.Start();
    const std::string board = test::CreateBoard(kProduct);
    const std::string expected = text.size() <= kLongestName ? text : "";
    for (int i = 0; i < 2; ++i) {
        char found[512] = "?";
        EXPECT_EQ(_oamBoardGetSerialNumber(board.c_str(), found, sizeof found), OAM_SUCCESS);
        EXPECT_EQ(found, expected);
        EXPECT_EQ(test::StoredKeywordOf(board, "Eeprom.SerialNum"), test::Is(text));
        if (i == 0) {
            EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
        }
    }
}

void nameCode(World& world, const std::string& text) {
    constexpr unsigned kCode = 0x51000001;
    world.recorder.Script(kPlugin, [&](test::ModuleScript& script) {
        script.texts = {{kCode, text.c_str()}};
    });
    world.Start();
    SwitchTraceOn(world);
    EXPECT_EQ(_oamGetText(kCode), text);
    EXPECT_EQ(test::Raise(kCode, OAM_ERROR, kBoard, "text"), OAM_SUCCESS);
    const std::string line = " - " + text + " ERROR  Board 0\"Prod 0\">\ntext\n";
    EXPECT_NE(world.home.Read("oam/log/oammon.log").find(line), std::string::npos);
}

// Raised by the plug-in in an entry of its own; everybody hears it whole.
void raise(World& world, const std::string& text) {
    world.recorder.Script(kPlugin, [&](test::ModuleScript& script) {
        script.sendBuffer = [text](const char*, const void*, unsigned) {
            return unsigned{test::Raise(OAMEVN_BOARD_DEAD, OAM_ERROR, text, text)};
        };
    });
    world.Start();
    EXPECT_EQ(_oamSendBuffer(kBoard, "", 0), OAM_SUCCESS);
    EXPECT_EQ(world.alerts.Heard(OAMEVN_BOARD_DEAD),
              (std::vector<test::Said>{{OAMEVN_BOARD_DEAD, OAM_ERROR, text, text}}));
}

struct Named {
    const char* what;
    Body body;
};

std::ostream& operator<<(std::ostream& out, const Named& named) { return out << named.what; }

void tryName(const Named& named, const std::string& which, const std::string& name) {
    TryCase(std::string(named.what) + ' ' + which, &FurnishWorld,
            [&](const test::Installation& home, const Watched& watched) {
                World world(home);
                watched.Doing("bringing it in");
                named.body(world, name);
                watched.Doing("a look around afterwards");
                world.ExpectStanding();
            });
}

class NameOfAnyLength : public testing::TestWithParam<Named> {};

TEST_P(NameOfAnyLength, IsKeptWholeOrRefused) {
    CountPoints(kMostBytes);
    const std::size_t shift = std::string(GetParam().what).size();
    for (const std::size_t i : ShareOf(kMostBytes, kQuickOneIn, shift))
        tryName(GetParam(), "of " + std::to_string(i + 1) + " bytes", textOf(i + 1));
    for (const std::size_t bytes : {125u, 126u, 127u, 128u, 129u}) {
        if (!IsFull()) tryName(GetParam(), "of " + std::to_string(bytes) + " bytes", textOf(bytes));
    }
}

INSTANTIATE_TEST_SUITE_P(Of, NameOfAnyLength,
                         testing::Values(Named{"Product", &serveProduct},
                                         Named{"DetectedBoard", &detect},
                                         Named{"DetectedProduct", &detectProduct},
                                         Named{"RenamedBoard", &rename},
                                         Named{"SerialNumber", &keepSerialNumber},
                                         Named{"CodeText", &nameCode}, Named{"Alert", &raise}),
                         [](const auto& row) { return std::string(row.param.what); });

}  // namespace
}  // namespace oam::torture
