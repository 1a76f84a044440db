// Counts that a plug-in answers: below zero, beyond all bounds, and no numbers at all.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "figures.h"
#include "oam/entry.h"
#include "support/objects.h"
#include "trial.h"

namespace oam::torture {
namespace {

constexpr std::size_t kQuickOneIn = 3;
constexpr long kMost = 4096;

const char* const kCounts[] = {
    "0",
    "-1",
    "1",
    "+3",
    " 4",
    "4095",
    "4096",
    "4097",
    "2147483647",
    "-2147483648",
    "2147483648",
    "4294967295",
    "4294967296",
    "9223372036854775807",
    "99999999999999999999",
    "",
    "x",
    "7x",
    "0x10",
    "%d",
    "-",
};

// What is read of it: as far as it is a number, kept in the machine's int.
int numberOf(const std::string& text) {
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
}

std::string expectedCount(const std::string& text) {
    return std::to_string(std::clamp<long>(numberOf(text), 0, kMost));
}

unsigned answer(const std::string& text, char* buffer, unsigned size) {
    if (buffer == nullptr) return OAM_SUCCESS;
    if (text.size() >= size) return OAMERR_NOT_ENOUGH_MEMORY;
    text.copy(buffer, text.size());
    buffer[text.size()] = '\0';
    return OAM_SUCCESS;
}

// Answers this count, and an element of its own for every index.
void countSo(World& world, const std::string& list, const std::string& count) {
    world.recorder.Script(kPlugin, [=](test::ModuleScript& script) {
        script.getKeyword = [=](unsigned long, const char* keyword, char* buffer,
                                unsigned size) -> unsigned {
            const std::string asked = keyword;
            if (asked == list + ".Count") return answer(count, buffer, size);
            if (asked == "Products.Count") return answer("0", buffer, size);
            if (!asked.starts_with(list + '[')) return OAMERR_NOT_FOUND;
            return answer("Element " + asked.substr(list.size()), buffer, size);
        };
    });
}

using Body = void (*)(World&, const std::string& count);

void countProducts(World& world, const std::string& count) {
    countSo(world, "Products", count);
    EXPECT_EQ(_oamInit(), OAM_SUCCESS);
    const int others = 1;  // of the sound plug-in
    EXPECT_EQ(test::KeywordOf("Supervisor", "Products.Count"),
              test::Is(std::to_string(std::atoi(expectedCount(count).c_str()) + others)));
}

void countDetected(World& world, const std::string& count) {
    world.Start();
    countSo(world, "DetectedBoards", count);
    EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    EXPECT_EQ(test::KeywordOf("Supervisor", "DetectedBoards.Count"),
              test::Is(expectedCount(count)));
    world.recorder.Script(kPlugin, [](test::ModuleScript& script) { script.getKeyword = nullptr; });
}

// Of the network interfaces, which a board keeps in the database; at most four are kept of them.
void countInterfaces(World& world, const std::string& count) {
    world.recorder.Script(kPlugin, [&](test::ModuleScript& script) {
        script.boardKeywords = {{"NetworkInterface.Ethernet.Count", count}};
        for (int i = 0; i < 6; ++i) {
            const std::string number = std::to_string(i);
            script.boardKeywords.emplace_back(
                "NetworkInterface.Ethernet[" + number + "].MAC_Address", "0" + number);
        }
    });
    world.Start();
    const std::string board = test::CreateBoard(kProduct);
    const auto wanted = static_cast<unsigned>(std::strtoul(count.c_str(), nullptr, 10));
    const unsigned kept = std::min(wanted, unsigned{OAM_MAC_KEPT});
    for (unsigned i = 0; i < 6; ++i) {
        char text[OAM_MAC_TEXT_SIZE] = "";
        EXPECT_EQ(_oamBoardGetMACAddress(board.c_str(), text, sizeof text, i), OAM_SUCCESS);
        EXPECT_EQ(text, i < kept ? "0" + std::to_string(i) : "") << i;
    }
}

struct Counted {
    const char* name;
    Body body;
};

std::ostream& operator<<(std::ostream& out, const Counted& counted) { return out << counted.name; }

class HostileCount : public testing::TestWithParam<Counted> {};

TEST_P(HostileCount, IsTakenForANumberWithinTheBound) {
    CountPoints(std::size(kCounts));
    const std::size_t shift = std::string(GetParam().name).size();
    for (const std::size_t i : ShareOf(std::size(kCounts), kQuickOneIn, shift)) {
        TryCase(std::string(GetParam().name) + " counted as \"" + kCounts[i] + '"', &FurnishWorld,
                [&](const test::Installation& home, const Watched& watched) {
                    World world(home);
                    watched.Doing("counting");
                    GetParam().body(world, kCounts[i]);
                    watched.Doing("a look around afterwards");
                    world.ExpectStanding();
                });
    }
}

INSTANTIATE_TEST_SUITE_P(Of, HostileCount,
                         testing::Values(Counted{"Products", &countProducts},
                                         Counted{"DetectedBoards", &countDetected},
                                         Counted{"Interfaces", &countInterfaces}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace oam::torture
