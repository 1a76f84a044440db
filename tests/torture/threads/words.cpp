#include "words.h"

#include "oam/entry.h"
#include "support/sim_site.h"

namespace oam::torture {

namespace {

std::string numbered(const char* stem, Random& random, unsigned count) {
    return stem + std::to_string(random.Below(count));
}

// One that is configured at this moment.
std::string listedBoard(Random& random) {
    char name[128] = "nobody";
    (void)_oamBoardEnum(static_cast<int>(random.Below(10)), name, sizeof name);
    return name;
}

std::string newName(Random& random) {
    static constexpr const char* kBad[] = {"", " Card", "Card ", "Ca<rd", "Sim 0", "ECHO 0"};
    return random.OneIn(4) ? std::string(random.OneOf(kBad)) : numbered("Card ", random, 8);
}

std::string yesOrNo(Random& random) {
    static constexpr const char* kAnswers[] = {"Yes", "No", "yes", "NO", "maybe"};
    return random.OneOf(kAnswers);
}

KeywordValue boardChange(Random& random) {
    static constexpr const char* kTexts[] = {"Driver.Name", "Driver.BoardId", "Eeprom.SerialNum",
                                             "Unknown"};
    switch (random.Below(9)) {
        case 0:
            return {"Name", newName(random)};
        case 1:
            return {"Number", numbered("", random, 20)};
        case 2:
            return {"Location.PCI.Slot", numbered("", random, 40)};
        case 3:
            return {"Location.PCI.IOAddress", numbered("", random, 100000)};
        case 4:
            return {"AutoStart", yesOrNo(random)};
        case 5:
            return {"AutoStop", yesOrNo(random)};
        case 6:
            return {"XLaw", random.OneIn(2) ? "a-law" : "MU-LAW"};
        case 7:
            return {"Fan.Warning", numbered("", random, 4000)};
        default:
            return {random.OneOf(kTexts), numbered("text ", random, 1000)};
    }
}

KeywordValue supervisorChange(Random& random) {
    static constexpr const char* kKeywords[] = {"AutoStartEnabled", "AutoStopEnabled",
                                                "OammonLog",        "SynchronizeEnabled",
                                                "Version.Major",    "Name"};
    return {random.OneOf(kKeywords), yesOrNo(random)};
}

KeywordValue simChange(Random& random) {
    switch (random.Below(4)) {
        case 0:
            return {"Timing.StartMs", numbered("", random, 4)};
        case 1:
            return {"Failure.Start", random.OneIn(4) ? "4000010C" : "0"};
        case 2:
            return {"Sensor.Temperature.Warning", numbered("", random, 900)};
        default:
            return {"Timing.StopMs", random.OneIn(2) ? "soon" : "1"};
    }
}

KeywordValue watchChange(Random& random) {
    switch (random.Below(3)) {
        case 0:
            return {"Threshold.Failures", numbered("", random, 4)};
        case 1:
            return {"Threshold.WindowSeconds", numbered("", random, 700)};
        default:
            return {"Period", numbered("period ", random, 3)};
    }
}

KeywordValue ownChange(Random& random) {
    return {numbered("Torture.", random, 5), numbered("value ", random, 1000)};
}

}  // namespace

bool IsBoard(const std::string& object) {
    for (const char* other : {kSupervisor, kSim, kWatch, kEcho, kEar}) {
        if (object == other) return false;
    }
    return true;
}

std::string AnyBoard(Random& random) {
    switch (random.Below(4)) {
        case 0:
            return SimSite::BoardName(static_cast<int>(random.Below(7)));
        case 1:
            return numbered("ECHO ", random, 4);
        case 2:
            return numbered("card ", random, 8);
        default:
            return listedBoard(random);
    }
}

std::string AnyProduct(Random& random) {
    static constexpr const char* kProducts[] = {"SIM-E1", "sim-ip",    "ECHO",
                                                "ECHO",   "none such", ""};
    return random.OneOf(kProducts);
}

std::string AnyObject(Random& random) {
    static constexpr const char* kOthers[] = {kSupervisor, kSim, kWatch, kEar, kEcho, "none such"};
    return random.OneIn(2) ? std::string(random.OneOf(kOthers)) : AnyBoard(random);
}

std::string AnyKeyword(Random& random, const std::string& object) {
    static constexpr const char* kComputed[] = {"Boards.Count",
                                                "Boards[1].Name",
                                                "Products[0]",
                                                "DetectedBoards.Count",
                                                "DetectedBoards[0].Location.PCI.Bus",
                                                "BoardPlugins[0]",
                                                "Name",
                                                "Keywords.Count"};
    return random.OneIn(3) ? std::string(random.OneOf(kComputed))
                           : AnyChange(random, object).keyword;
}

std::string AnyQualifier(Random& random) {
    static constexpr const char* kQualifiers[] = {"Type",       "ReadOnly",    "Choices.Count",
                                                  "Choices[0]", "Description", "Keywords.Count",
                                                  "Max",        "Torture"};
    return random.OneOf(kQualifiers);
}

KeywordValue AnyChange(Random& random, const std::string& object) {
    if (object == kSupervisor) return supervisorChange(random);
    if (object == kSim) return simChange(random);
    if (object == kWatch) return watchChange(random);
    return IsBoard(object) ? boardChange(random) : ownChange(random);
}

KeywordValue AnyStoredChange(Random& random, const std::string& object) {
    if (!IsBoard(object) || !random.OneIn(6)) return ownChange(random);
    if (random.OneIn(2)) return {"Number", numbered("", random, 20)};
    return {"Name", numbered("Card ", random, 8)};
}

unsigned AnySize(Random& random) { return random.OneIn(8) ? random.Below(8) : 128; }

}  // namespace oam::torture
