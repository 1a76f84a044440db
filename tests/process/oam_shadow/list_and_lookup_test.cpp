#include <algorithm>
#include <atomic>
#include <thread>

#include "program_test.h"

namespace oam::test {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ShadowList : public ShadowProgram {};

TEST_F(ShadowList, ShowsTheBoards) {
    StartWithBoard();
    ASSERT_EQ(Change("Card 0", "Name", "Left"), OAM_SUCCESS);
    ASSERT_EQ(CreateBoard("Card"), "Card 0");
    ASSERT_EQ(Change("Card 0", "XLaw", "A-LAW"), OAM_SUCCESS);
    EXPECT_EQ(Out({"list"}),
              "NAME    NUMBER  DRIVER  DRIVER ID  A-LAW\n"
              "Card 0       1  qx      0          yes\n"
              "Left         0  qx      0          no\n");
}

TEST_F(ShadowList, IsOneObjectInJson) {
    StartWithBoard();
    EXPECT_EQ(Json({"list", "--json"}),
              json::parse(R"({"schema": 1, "usingVxPlugin": false, "boards": [{"name": "Card 0",
                  "number": 0, "driverName": "qx", "driverBoardId": "0", "aLaw": false}]})"));
}

TEST_F(ShadowList, TellsTheVxPlugin) {
    AddPlugin("vxplugin.bpi");
    StartWithBoard();
    EXPECT_EQ(Json({"--json", "list"})["usingVxPlugin"], true);
}

TEST_F(ShadowList, NeedsNoServer) {
    EXPECT_THAT(Json({"list", "--json"})["boards"], IsEmpty());
    StartWithBoard();
    ASSERT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(Json({"list", "--json"})["boards"].size(), 1u);
}

TEST_F(ShadowList, LooksInTheDirectoryThatItIsGiven) {
    StartWithBoard();
    home.MakeDirectory("elsewhere");
    EXPECT_THAT(Json({"list", "--json", "--shm-dir", home.Path("elsewhere")})["boards"], IsEmpty());
    setenv("KOR_SHM_DIR", home.Path("elsewhere").c_str(), 1);
    EXPECT_EQ(Json({"list", "--json", "--shm-dir", "shm"})["boards"].size(), 1u);
}

TEST_F(ShadowList, FailsWhenTheShadowCannotBeRead) {
    home.Remove("shm");
    EXPECT_THAT(Run({"list"}), Complains(1, "OAMERR_NOT_ENOUGH_MEMORY (0x40000003)"));
}

TEST_F(ShadowList, FailsWhenTheShadowIsSpoiled) {
    StartWithBoard();
    ASSERT_EQ(_oamExit(), OAM_SUCCESS);
    home.Write("shm/OAM_BoardIDsShadow", std::string(10624, '\xff'));
    EXPECT_THAT(Run({"list"}), Complains(1, "the shadow cannot be read"));
}

// The driver's name and the board's identifier change in one commit, so they always agree.
TEST_F(ShadowList, IsOneStateWhileTheTableChanges) {
    StartWithBoard();
    std::atomic<bool> isDone = false;
    std::thread changes([&] {
        for (int i = 0; !isDone; ++i) {
            const auto text = std::to_string(i);
            const unsigned long handle = Open("Card 0", kWrite);
            EXPECT_EQ(_oamSetKeyword(handle, "Driver.Name", text.c_str()), OAM_SUCCESS);
            EXPECT_EQ(_oamSetKeyword(handle, "Driver.BoardId", text.c_str()), OAM_SUCCESS);
            EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
        }
    });
    int lists = 0;
    for (int i = 0; i < 10; ++i) {
        const Finished run = Run({"list", "--json"});
        if (run.status == 1) {
            EXPECT_THAT(run.err, HasSubstr("changes faster than it can be read"));
            continue;
        }
        ++lists;
        const auto board = json::parse(run.out)["boards"].at(0);
        if (board["driverName"] != "qx") {
            EXPECT_EQ(board["driverName"], board["driverBoardId"]);
        }
    }
    isDone = true;
    changes.join();
    EXPECT_GT(lists, 0);
}

class ShadowLookup : public ShadowProgram {
  protected:
    void SetUp() override {
        ShadowProgram::SetUp();
        StartWithBoard();
        ASSERT_EQ(CreateBoard("Card"), "Card 1");
        ASSERT_EQ(Change("Card 1", "Driver.BoardId", "1"), OAM_SUCCESS);
    }
    std::string Name(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"lookup", "--json"});
        return Json(arguments)["name"];
    }
};

TEST_F(ShadowLookup, FindsABoardByEachIdentity) {
    EXPECT_EQ(Name({"--name", "card 1"}), "Card 1");
    EXPECT_EQ(Name({"--number", "1"}), "Card 1");
    EXPECT_EQ(Name({"--number", "0x0"}), "Card 0");
    EXPECT_EQ(Name({"--driver", "QX", "--board-id", "1"}), "Card 1");
}

TEST_F(ShadowLookup, ShowsTheBoard) {
    EXPECT_EQ(Out({"lookup", "--number", "1"}),
              "NAME       Card 1\n"
              "NUMBER     1\n"
              "DRIVER     qx\n"
              "DRIVER ID  1\n"
              "A-LAW      no\n");
}

TEST_F(ShadowLookup, TellsWhatItDidNotFind) {
    const std::string code = ": OAMERR_NOT_FOUND (0x40000004)";
    EXPECT_THAT(Run({"lookup", "--name", "Left"}),
                Complains(1, "oam-shadow: no board has name \"Left\"" + code));
    EXPECT_THAT(Run({"lookup", "--number", "9"}), Complains(1, "no board has number 9" + code));
    EXPECT_THAT(Run({"lookup", "--driver", "qx", "--board-id", "9"}),
                Complains(1, "no board of driver \"qx\" has identifier \"9\"" + code));
}

TEST_F(ShadowLookup, RefusesIdentitiesThatDoNotGoTogether) {
    const std::vector<std::vector<std::string>> wrong = {
        {"lookup"},
        {"lookup", "--driver", "qx"},
        {"lookup", "--board-id", "1"},
        {"lookup", "--name", "a", "--number", "1"},
        {"lookup", "--number", "1", "--driver", "qx", "--board-id", "1"},
        {"lookup", "--number", "-1"},
        {"lookup", "--number", "4294967296"},
        {"lookup", "--number", "one"},
    };
    for (const auto& arguments : wrong) {
        EXPECT_EQ(Run(arguments).status, 2) << ::testing::PrintToString(arguments);
    }
}

class ShadowUsage : public ShadowProgram {};

TEST_F(ShadowUsage, IsToldOnRequest) {
    EXPECT_THAT(Out({"--help"}), HasSubstr("Exit status: 0 done, 1 not found or unreadable"));
    EXPECT_THAT(Out({"watch", "--help"}), HasSubstr("--interval"));
}

TEST_F(ShadowUsage, ThatIsWrongEndsWithTwo) {
    const std::vector<std::vector<std::string>> wrong = {{},
                                                         {"unheard"},
                                                         {"list", "--unheard"},
                                                         {"list", "more"},
                                                         {"list", "--shm-dir", "/nonexistent"},
                                                         {"watch", "--interval", "0"},
                                                         {"watch", "--count", "0"},
                                                         {"watch", "--interval", "1e3"}};
    for (const auto& arguments : wrong) {
        EXPECT_THAT(Run(arguments), Complains(2, "")) << ::testing::PrintToString(arguments);
    }
}

}  // namespace
}  // namespace oam::test
