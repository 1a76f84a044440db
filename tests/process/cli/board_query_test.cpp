// Questions about boards: list, info, status, lookup, send.
#include <chrono>

#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

class ToolBoardQueries : public ToolTest {
  protected:
    void SetUp() override {
        AddSimBoard("Sim IP lower");
        Out({"set", "Sim IP lower", "Location.CPCI.Shelf=3", "Location.CPCI.Slot=4",
             "Location.PCI.IOAddress=4096", "Driver.BoardId=b", "AutoStop=Yes"});
    }
};

}  // namespace

TEST_F(ToolBoardQueries, TheListIsATable) {
    Out({"board", "create", "SIM-E1"});
    EXPECT_EQ(Out({"board", "list"}),
              "NUMBER  NAME          PRODUCT  BUS:SLOT  SHELF:SLOT  SERIAL     START  STOP\n"
              "     0  Sim IP lower  SIM-IP   2:5       3:4         SIM000205  no     no\n"
              "     1  SIM-E1 0      SIM-E1   0:0       -           -          no     no\n");
}

TEST_F(ToolBoardQueries, TheListSaysWhatTheServiceWillDoByItself) {
    EXPECT_EQ(Json({"board", "list"})["boards"][0]["autoStop"], false);
    Out({"supervisor", "AutoStopEnabled=Yes"});
    const auto board = Json({"board", "list"})["boards"][0];
    EXPECT_EQ(board["autoStop"], true);
    EXPECT_EQ(board["autoStart"], false);
    EXPECT_EQ(board["pci"]["bus"], 2);
    EXPECT_EQ(board["compactPci"]["shelf"], 3);
}

TEST_F(ToolBoardQueries, InfoTellsAllThatTheTableHolds) {
    const auto info = Json({"board", "info", "SIM IP LOWER"});
    EXPECT_EQ(info["name"], "Sim IP lower");
    EXPECT_EQ(info["ioAddress"], 4096);
    EXPECT_EQ(info["driverName"], "sim");
    EXPECT_EQ(info["driverBoardId"], "b");
    EXPECT_EQ(info["serialNumber"], "SIM000205");
    EXPECT_EQ(info["macAddresses"], nlohmann::json({"02:00:53:02:05:00", "02:00:53:02:05:01"}));
    EXPECT_THAT(Out({"board", "info", "Sim IP lower"}),
                HasSubstr("\nMAC addresses       02:00:53:02:05:00, 02:00:53:02:05:01\n"));
    EXPECT_THAT(Run({"board", "info", "Bogus"}), Complains(4, "there is no board \"Bogus\""));
}

TEST_F(ToolBoardQueries, EveryIdentityFindsTheBoard) {
    for (const Words& identity : {Words{"--number", "0"},
                                  {"--driver", "SIM", "B"},
                                  {"--bus-slot", "2", "5"},
                                  {"--shelf-slot", "3", "0x4"},
                                  {"--io", "0x1000"},
                                  {"--serial", "sim000205"},
                                  {"--product", "sim-ip"},
                                  {"--mac", "02:00:53:02:05:01"}}) {
        Words words{"board", "lookup"};
        words.insert(words.end(), identity.begin(), identity.end());
        EXPECT_EQ(Out(words), "Sim IP lower\n") << identity[0];
        EXPECT_EQ(Json(words)["name"], "Sim IP lower");
    }
}

TEST_F(ToolBoardQueries, AnIdentityThatNoBoardHasFindsNone) {
    const Finished run = Run({"board", "lookup", "--bus-slot", "9", "9"});
    EXPECT_THAT(run, Complains(4, "no such board: OAMERR_NOT_FOUND"));
    EXPECT_EQ(run.out, "");
}

TEST_F(ToolBoardQueries, StatusIsThePlugInsAnswer) {
    EXPECT_EQ(Out({"board", "status", "Sim IP lower"}), "0\n");
    EXPECT_EQ(Json({"board", "status", "Sim IP lower", "--selector", "0"})["status"], 0);
    EXPECT_EQ(Run({"board", "status", "Sim IP lower", "--selector", "4000000000"}).status, 1);
}

TEST_F(ToolBoardQueries, SendPassesTextsAndFilesOn) {
    EXPECT_EQ(Out({"board", "send", "Sim IP lower", "temperature 400"}),
              "sent 15 bytes to \"Sim IP lower\"\n");
    home.Write("command", "remove\n");
    EXPECT_EQ(Json({"board", "send", "sim ip lower", "--file", "command"})["sent"], 7);
    EXPECT_THAT(Run({"board", "send", "Sim IP lower", "bogus"}),
                Complains(1, "cannot send to \"Sim IP lower\": OAMERR_SEND_BUFFER_FAIL"));
    EXPECT_THAT(Run({"board", "send", "Sim IP lower", "--file", "bogus"}),
                Complains(1, "cannot read \"bogus\""));
    EXPECT_THAT(Run({"board", "send", "Sim IP lower", "--file", "."}),
                Complains(1, "not a regular file"));
    EXPECT_THAT(Run({"board", "send", "Sim IP lower", "x", "--file", "command"}),
                Complains(2, "give a TEXT or --file FILE"));
}

TEST_F(ToolBoardQueries, ThreeHundredBoardsAreListed) {
    std::vector<ObjectEntries> objects;
    for (int i = 0; i < 300; ++i) {
        const std::string name = "Board " + std::to_string(i);
        Entries entries = StandardEntries(name, "SIM-E1");
        entries.emplace_back("Number", std::to_string(i));
        home.WriteDataFile("Obj" + std::to_string(i) + ".xmo", DataFile(name, entries));
    }
    EXPECT_EQ(Json({"board", "list"})["boards"].size(), 300u);
}

}  // namespace oam::test
