#include "soundness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "crash/host.h"
#include "oam/entry.h"
#include "oam/shadow.h"
#include "support/resources.h"
#include "support/watchdog.h"
#include "words.h"

namespace oam::torture {

namespace {

constexpr unsigned kSize = 512;

// Each object with its entries.
std::map<std::string, std::string> objects() {
    std::map<std::string, std::string> found;
    std::istringstream digest(StateDigest());
    std::string object;
    for (std::string line; std::getline(digest, line);) {
        if (!line.starts_with("  ")) object = line;
        found[object] += line + '\n';
    }
    return found;
}

// A refused import leaves the components without objects, until they are loaded again.
void expectSame(const std::map<std::string, std::string>& before,
                const std::map<std::string, std::string>& after) {
    for (const auto& [object, entries] : before) {
        ASSERT_TRUE(after.contains(object)) << object << " is lost";
        EXPECT_EQ(after.at(object), entries);
    }
    for (const auto& [object, entries] : after) {
        const bool isComponent = object == kWatch || object == kEar;
        EXPECT_TRUE(isComponent || before.contains(object)) << object << " was not there";
    }
}

std::vector<std::string> boards() {
    std::vector<std::string> names;
    char name[kSize];
    for (int i = 0; _oamBoardEnum(i, name, sizeof name) == OAM_SUCCESS; ++i) names.push_back(name);
    return names;
}

// Every board as the table has it, but what the setters change in memory only.
std::string boardDigest() {
    std::ostringstream out;
    for (const std::string& board : boards()) {
        const char* name = board.c_str();
        unsigned number = 0, bus = 0, slot = 0, address = 0, isStarted = 0, isStopped = 0;
        char serial[kSize] = "", product[kSize] = "", driver[kSize] = "", id[kSize] = "";
        out << name << ": " << _oamBoardGetNumber(name, &number) << ' ' << number
            << _oamBoardGetBusSlot(name, &bus, &slot) << ' ' << bus << ' ' << slot
            << _oamBoardGetIOAddress(name, &address) << ' ' << address
            << _oamBoardGetSerialNumber(name, serial, kSize) << ' ' << serial
            << _oamBoardGetProduct(name, product, kSize) << ' ' << product
            << _oamBoardGetDriverIDs(name, driver, kSize, id, kSize) << ' ' << driver << ' ' << id
            << _oamBoardGetAutoStartEnabled(name, &isStarted) << ' ' << isStarted
            << _oamBoardGetAutoStopEnabled(name, &isStopped) << ' ' << isStopped << '\n';
    }
    return out.str();
}

std::vector<std::string> shadowBoards() {
    std::vector<std::string> names;
    char name[kSize];
    for (int i = 0; oamShadowBoardEnum(0, i, name, sizeof name) == OAM_SUCCESS; ++i) {
        names.push_back(name);
    }
    return names;
}

void expectOnlyDataFiles(const SimSite& site) {
    for (const std::string& file : site.home.List("oam/cfg")) {
        const bool isKnown =
            file.ends_with(".xmo") || file == "sim.chassis" || file == "import-refused";
        EXPECT_TRUE(isKnown) << "left in oam/cfg: " << file;
    }
}

}  // namespace

void ExpectSoundService(const SimSite& site, int threads) {
    if (!AwaitThreads(threads)) Watchdog::GiveUp("the service's threads do not end");
    EXPECT_TRUE(ChangeSettings(kSupervisor, {{"OammonLog", "No"}, {"SynchronizeEnabled", "No"}}));
    // Refused before the file is looked for while any object is open.
    EXPECT_EQ(_oamConfigImport("/there is no such file"), OAMERR_NOT_FOUND) << "an object is open";

    const auto before = objects();
    const std::string table = boardDigest();
    ASSERT_EQ(_oamRestart(), OAM_SUCCESS) << site.home.Read("oam/log/startup.log");
    expectSame(before, objects());
    EXPECT_EQ(boardDigest(), table);
    EXPECT_EQ(shadowBoards(), boards());
    expectOnlyDataFiles(site);
    EXPECT_THAT(site.home.Read("oam/log/startup.log"), testing::Not(testing::HasSubstr("(E): ")));
}

}  // namespace oam::torture
