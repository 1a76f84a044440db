// Which boards there are: detect, add, create, delete.
#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class ToolBoards : public ToolTest {
  protected:
    void SetUp() override { AddSim(); }

    std::vector<std::string> Boards() const {
        std::vector<std::string> names;
        const auto answer = Json({"board", "list"});
        for (const auto& board : answer["boards"]) names.push_back(board["name"]);
        return names;
    }
};

}  // namespace

TEST_F(ToolBoards, DetectionTellsWhatIsThereAndWhatIsConfigured) {
    EXPECT_EQ(Out({"detect"}),
              "NAME          PRODUCT  BUS  SLOT  CONFIGURED AS\n"
              "Sim E1 left   SIM-E1     1     2  -\n"
              "Sim E1 right  SIM-E1     1     3  -\n"
              "Sim IP lower  SIM-IP     2     5  -\n"
              "Sim IP upper  SIM-IP     2     4  -\n");
    Out({"board", "add", "Sim E1 left"});
    Out({"set", "Sim E1 left", "Name=Trunk"});
    const auto detected = Json({"detect"})["detected"];
    EXPECT_EQ(detected[0]["configuredAs"], "Trunk");
    EXPECT_EQ(detected[1]["configuredAs"], nullptr);
}

TEST_F(ToolBoards, ADetectedBoardIsAddedByName) {
    EXPECT_EQ(Out({"board", "add", "sim ip UPPER"}), "added \"Sim IP upper\"\n");
    EXPECT_THAT(Boards(), ElementsAre("Sim IP upper"));
}

TEST_F(ToolBoards, AllDetectedBoardsAreAddedButThoseThatAreThere) {
    Out({"board", "add", "Sim E1 right"});
    EXPECT_EQ(Json({"board", "add", "--all"})["added"],
              nlohmann::json({"Sim E1 left", "Sim IP lower", "Sim IP upper"}));
    EXPECT_EQ(Boards().size(), 4u);
}

TEST_F(ToolBoards, WhyABoardIsNotAddedIsTold) {
    Out({"board", "add", "Sim E1 left"});
    EXPECT_THAT(Run({"board", "add", "Sim E1 left"}),
                Complains(1, "The Board \"Sim E1 left\" is already present"));
    EXPECT_THAT(Run({"board", "add", "Bogus"}), Complains(4, "OAMERR_NOT_FOUND"));
    Out({"set", "Sim E1 left", "Name=Trunk"});
    EXPECT_THAT(Run({"board", "add", "Sim E1 left"}), Complains(1, "already the same bus:slot"));
}

TEST_F(ToolBoards, ABoardOfAProductGetsANameOfItsOwn) {
    EXPECT_EQ(Out({"board", "create", "SIM-E1"}), "created \"SIM-E1 0\"\n");
    EXPECT_EQ(Json({"board", "create", "sim-e1"})["created"], "sim-e1 1");
    EXPECT_EQ(Boards().size(), 2u);
}

TEST_F(ToolBoards, AProductThatNobodyServesIsRefused) {
    EXPECT_THAT(Run({"board", "create", "Bogus"}),
                Complains(4, "cannot create a board of product \"Bogus\": OAMERR_NOT_FOUND"));
    EXPECT_THAT(Run({"board", "create", std::string(200, 'p')}),
                Complains(1, "OAMERR_NOT_ENOUGH_MEMORY"));
    EXPECT_THAT(Out({"objects"}), Not(HasSubstr("Bogus")));
}

TEST_F(ToolBoards, ABoardIsDeletedWithItsDataFile) {
    Out({"board", "add", "Sim E1 left"});
    EXPECT_EQ(Out({"board", "delete", "SIM e1 left"}), "deleted \"Sim E1 left\"\n");
    EXPECT_FALSE(home.Exists("oam/cfg/Obj0.xmo"));
    EXPECT_THAT(Run({"board", "delete", "Sim E1 left"}),
                Complains(4, "cannot delete \"Sim E1 left\": OAMERR_NOT_FOUND"));
}

TEST_F(ToolBoards, DeletingAllLeavesTheOtherObjects) {
    Out({"board", "add", "--all"});
    EXPECT_EQ(Json({"board", "delete", "--all"})["deleted"].size(), 4u);
    EXPECT_EQ(Json({"objects"})["objects"].size(), 2u);
}

TEST_F(ToolBoards, OnlyBoardsCanBeDeleted) {
    EXPECT_THAT(Run({"board", "delete", "supervisor"}), Complains(2, "is no board"));
    EXPECT_THAT(Run({"board", "delete", "sim.bpi"}), Complains(2, "is no board"));
    EXPECT_EQ(Json({"objects"})["objects"].size(), 2u);
}

TEST_F(ToolBoards, ABoardWhosePlugInIsGoneCanBeDeleted) {
    Out({"board", "add", "Sim E1 left"});
    home.Remove("lib/sim.bpi");
    EXPECT_TRUE(Boards().empty());
    EXPECT_EQ(Out({"board", "delete", "--all"}), "deleted \"Sim E1 left\"\n");
}

}  // namespace oam::test
