// What a stopped service answers: everything but the lifecycle, text and registration calls is
// refused, and no output is touched.
#include <functional>

#include "support/service_test.h"

namespace oam::test {
namespace {

constexpr unsigned kMark = 0xABCD;

struct Outputs {
    char text[32] = "untouched";
    char text2[32] = "untouched";
    unsigned long handle = kMark;
    unsigned number = kMark;
    unsigned number2 = kMark;
    int status = kMark;
    bool flag = true;

    bool Untouched() const {
        return std::string(text) == "untouched" && std::string(text2) == "untouched" &&
               handle == kMark && number == kMark && number2 == kMark &&
               status == static_cast<int>(kMark) && flag;
    }
};

struct Request {
    const char* name;
    std::function<unsigned(Outputs&)> call;
};

constexpr unsigned kSize = 32;

const std::vector<Request>& requests() {
    static const std::vector<Request> all = {
        {"ClientInit", [](Outputs&) { return _oamClientInit(kClient); }},
        {"ClientExit", [](Outputs&) { return _oamClientExit(kClient); }},
        {"OpenObject", [](Outputs& o) { return _oamOpenObject(kClient, "x", &o.handle, 0); }},
        {"OpenObjectOfTheServiceItself",
         [](Outputs& o) { return _oamOpenObject(kServer, "x", &o.handle, 0); }},
        {"CloseObject", [](Outputs&) { return _oamCloseObject(0); }},
        {"CloseObjectWithoutAlert", [](Outputs&) { return _oamCloseObject_WOAN(0); }},
        {"SetKeyword", [](Outputs&) { return _oamSetKeyword(0, "a", "b"); }},
        {"GetKeyword", [](Outputs& o) { return _oamGetKeyword(0, "a", o.text, kSize); }},
        {"GetQualifier",
         [](Outputs& o) { return _oamGetQualifier(0, "a", "Type", o.text, kSize); }},
        {"DbOpenObject", [](Outputs& o) { return _oamDbOpenObject("x", &o.handle, 0); }},
        {"DbCloseObject", [](Outputs&) { return _oamDbCloseObject(0); }},
        {"DbGetProviderMode", [](Outputs& o) { return _oamDbGetProviderMode(0, &o.flag); }},
        {"DbSetProviderMode", [](Outputs&) { return _oamDbSetProviderMode(0, true); }},
        {"DbSetKeyword", [](Outputs&) { return _oamDbSetKeyword(0, "a", "b"); }},
        {"DbGetKeyword", [](Outputs& o) { return _oamDbGetKeyword(0, "a", o.text, kSize); }},
        {"DbRemoveKeyword", [](Outputs&) { return _oamDbRemoveKeyword(0, "a"); }},
        {"DbSetQualifier", [](Outputs&) { return _oamDbSetQualifier(0, "a", "Type", "b"); }},
        {"DbGetQualifier",
         [](Outputs& o) { return _oamDbGetQualifier(0, "a", "Type", o.text, kSize); }},
        {"DbRemoveQualifier", [](Outputs&) { return _oamDbRemoveQualifier(0, "a", "Type"); }},
        {"DbEnumObjects", [](Outputs& o) { return _oamDbEnumObjects(0, o.text, kSize); }},
        {"DbEnumKeywords", [](Outputs& o) { return _oamDbEnumKeywords(0, 0, o.text, kSize); }},
        {"ConfigExport", [](Outputs&) { return _oamConfigExport("/nowhere/file"); }},
        {"ConfigImport", [](Outputs&) { return _oamConfigImport("/nowhere/file"); }},
        {"CreateBoard", [](Outputs& o) { return _oamCreateBoard("Prod", o.text, kSize); }},
        {"DeleteBoard", [](Outputs&) { return _oamDeleteBoard("x"); }},
        {"DeleteAllBoards", [](Outputs&) { return _oamDeleteBoard(nullptr); }},
        {"AddDetectedBoard", [](Outputs&) { return _oamAddDetectedBoard("x"); }},
        {"StartBoard", [](Outputs&) { return _oamStartBoard("x", 0); }},
        {"StopBoard", [](Outputs&) { return _oamStopBoard(nullptr, 2); }},
        {"TestBoard", [](Outputs&) { return _oamTestBoard("x", 1); }},
        {"BoardEnum", [](Outputs& o) { return _oamBoardEnum(0, o.text, kSize); }},
        {"BoardLookupByNumber",
         [](Outputs& o) { return _oamBoardLookupByNumber(0, o.text, kSize); }},
        {"BoardLookupByDriverIDs",
         [](Outputs& o) { return _oamBoardLookupByDriverIDs("d", "0", o.text, kSize); }},
        {"BoardLookupByBusSlot",
         [](Outputs& o) { return _oamBoardLookupByBusSlot(0, 0, o.text, kSize); }},
        {"BoardLookupByShelfSlot",
         [](Outputs& o) { return _oamBoardLookupByShelfSlot(0, 0, o.text, kSize); }},
        {"BoardLookupByIOAddress",
         [](Outputs& o) { return _oamBoardLookupByIOAddress(0, o.text, kSize); }},
        {"BoardLookupBySerialNumber",
         [](Outputs& o) { return _oamBoardLookupBySerialNumber("s", o.text, kSize); }},
        {"BoardLookupByProduct",
         [](Outputs& o) { return _oamBoardLookupByProduct("p", o.text, kSize); }},
        {"BoardLookupByMACAddress",
         [](Outputs& o) { return _oamBoardLookupByMACAddress("m", o.text, kSize); }},
        {"BoardGetNumber", [](Outputs& o) { return _oamBoardGetNumber("x", &o.number); }},
        {"BoardGetDriverIDs",
         [](Outputs& o) { return _oamBoardGetDriverIDs("x", o.text, kSize, o.text2, kSize); }},
        {"BoardGetBusSlot",
         [](Outputs& o) { return _oamBoardGetBusSlot("x", &o.number, &o.number2); }},
        {"BoardGetShelfSlot",
         [](Outputs& o) { return _oamBoardGetShelfSlot("x", &o.number, &o.number2); }},
        {"BoardSetShelfSlot", [](Outputs&) { return _oamBoardSetShelfSlot("x", 1, 2); }},
        {"BoardResetMACAddressCount", [](Outputs&) { return _oamBoardResetMACAddressCount("x"); }},
        {"BoardSetMACAddress",
         [](Outputs&) {
             static const char texts[1][OAM_MAC_TEXT_SIZE] = {"00:01"};
             return _oamBoardSetMACAddress("x", texts, 1);
         }},
        {"BoardGetMACAddress",
         [](Outputs& o) { return _oamBoardGetMACAddress("x", o.text, kSize, 0); }},
        {"BoardGetIOAddress", [](Outputs& o) { return _oamBoardGetIOAddress("x", &o.number); }},
        {"BoardGetSerialNumber",
         [](Outputs& o) { return _oamBoardGetSerialNumber("x", o.text, kSize); }},
        {"BoardGetProduct", [](Outputs& o) { return _oamBoardGetProduct("x", o.text, kSize); }},
        {"BoardGetAutoStartEnabled",
         [](Outputs& o) { return _oamBoardGetAutoStartEnabled("x", &o.number); }},
        {"BoardGetAutoStopEnabled",
         [](Outputs& o) { return _oamBoardGetAutoStopEnabled("x", &o.number); }},
        {"SendBuffer", [](Outputs&) { return _oamSendBuffer("x", "data", 4); }},
        {"BoardGetStatus", [](Outputs& o) { return _oamBoardGetStatus("x", 0, &o.status); }},
        {"DetectBoards", [](Outputs&) { return _oamDetectBoards(); }},
    };
    return all;
}

class NotRunning : public ServiceTest {
  protected:
    void ExpectAllRefused() {
        for (const Request& request : requests()) {
            Outputs outputs;
            EXPECT_EQ(request.call(outputs), OAMERR_SERVER_NOT_RUNNING) << request.name;
            EXPECT_TRUE(outputs.Untouched()) << request.name;
        }
    }
};

TEST_F(NotRunning, EveryServiceCallIsRefusedBeforeTheStart) { ExpectAllRefused(); }

TEST_F(NotRunning, EveryServiceCallIsRefusedAfterTheStop) {
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    ExpectAllRefused();
}

TEST_F(NotRunning, EveryServiceCallIsRefusedAfterAFailedStart) {
    home.Write("lib/broken.bpi", "not a library");
    EXPECT_EQ(_oamInit(), 0xf0027u);
    ExpectAllRefused();
}

TEST_F(NotRunning, RefusedCreationRaisesNoAlert) {
    char name[32] = "untouched";
    EXPECT_EQ(_oamCreateBoard("Prod", name, sizeof name), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_TRUE(alerts.All().empty());
}

TEST_F(NotRunning, DatabaseCallsRunFromTheSecondStageOnAndObjectCallsDoNot) {
    unsigned opened = kMark;
    unsigned database = kMark;
    unsigned boards = kMark;
    AddComponent("x.emc", [&](ModuleScript& script) {
        script.init = [&](const char*) {
            unsigned long handle = 0;
            opened = _oamOpenObject(kClient, "Supervisor", &handle, kRead);
            database = _oamDbOpenObject("Supervisor", &handle, kRead);
            boards = _oamStartBoard(nullptr, 0);
            return unsigned{_oamDbCloseObject(handle)};
        };
    });
    Start();
    EXPECT_EQ(opened, OAMERR_SERVER_NOT_RUNNING) << "the library's flag";
    EXPECT_EQ(database, OAM_SUCCESS) << "the database's flag";
    EXPECT_EQ(boards, OAMERR_SERVER_NOT_RUNNING) << "board communication's flag";
}

TEST_F(NotRunning, TextAndRegistrationCallsWork) {
    EXPECT_STREQ(_oamGetText(OAMERR_NOT_FOUND), "OAMERR_NOT_FOUND");
    EXPECT_EQ(_oamAlertRegister(kClient), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertUnregister(kClient), OAM_SUCCESS);
    _oamHello("text");
}

}  // namespace
}  // namespace oam::test
