#include <csignal>
#include <sstream>

#include "program_test.h"

namespace oam::test {
namespace {

using nlohmann::json;

class ShadowWatch : public ShadowProgram {
  protected:
    void SetUp() override {
        ShadowProgram::SetUp();
        StartWithBoard();
    }
    std::vector<std::string> Arguments(std::vector<std::string> more = {}) const {
        more.insert(more.begin(), {"watch", "--interval", "1"});
        return Command(more);
    }
};

TEST_F(ShadowWatch, TellsWhatChanges) {
    ChildProcess program(Arguments(), home.Root());
    program.AwaitOutput("watching 1 boards\n");
    ASSERT_EQ(CreateBoard("Card"), "Card 1");
    program.AwaitOutput("added 1: \"Card 1\"\n");
    ASSERT_EQ(Change("Card 1", "Name", "Left"), OAM_SUCCESS);
    program.AwaitOutput("renamed 1: \"Card 1\" -> \"Left\"\n");
    ASSERT_EQ(Change("Left", "XLaw", "A-LAW"), OAM_SUCCESS);
    program.AwaitOutput("changed 1: \"Left\" aLaw no -> yes\n");
    ASSERT_EQ(Change("Left", "Number", "8"), OAM_SUCCESS);
    program.AwaitOutput("changed 8: \"Left\" number 1 -> 8\n");
    ASSERT_EQ(_oamDeleteBoard("Card 0"), OAM_SUCCESS);
    program.AwaitOutput("removed 0: \"Card 0\"\n");
    program.Signal(SIGTERM);
    const Finished finished = program.Finish();
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.err, "");
}

TEST_F(ShadowWatch, EndsAfterSoManyDifferences) {
    ChildProcess program(Arguments({"--count", "1"}), home.Root());
    program.AwaitOutput("watching");
    ASSERT_EQ(_oamDeleteBoard("Card 0"), OAM_SUCCESS);
    const Finished finished = program.Finish();
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.out, "watching 1 boards\nremoved 0: \"Card 0\"\n");
}

TEST_F(ShadowWatch, IsOneObjectALineInJson) {
    ChildProcess program(Arguments({"--count", "1", "--json"}), home.Root());
    program.AwaitOutput("watching");
    ASSERT_EQ(Change("Card 0", "Name", "Left"), OAM_SUCCESS);
    std::istringstream out(program.Finish().out);
    std::string first, second, more;
    std::getline(out, first);
    std::getline(out, second);
    EXPECT_EQ(json::parse(first)["event"], "watching");
    EXPECT_EQ(json::parse(first)["boards"].at(0)["name"], "Card 0");
    EXPECT_EQ(json::parse(second)["event"], "renamed");
    EXPECT_EQ(json::parse(second)["schema"], 1);
    EXPECT_EQ(json::parse(second)["after"]["name"], "Left");
    EXPECT_FALSE(std::getline(out, more));
}

TEST_F(ShadowWatch, SeesASegmentThatIsMadeAgain) {
    ChildProcess program(Arguments({"--count", "2"}), home.Root());
    program.AwaitOutput("watching 1 boards\n");
    ASSERT_EQ(_oamExit(), OAM_SUCCESS);
    std::filesystem::remove(home.Path("shm/OAM_BoardIDsShadow"));
    program.AwaitOutput("removed 0: \"Card 0\"\n");
    Start();
    program.AwaitOutput("added 0: \"Card 0\"\n");
    EXPECT_EQ(program.Finish().status, 0);
}

TEST_F(ShadowWatch, EndsWhenNobodyReadsItsOutput) {
    ChildProcess program(Arguments(), home.Root());
    program.AwaitOutput("watching");
    program.CloseOutput();
    ASSERT_EQ(_oamDeleteBoard("Card 0"), OAM_SUCCESS);
    const Finished finished = program.Finish();
    EXPECT_EQ(finished.status, 1);
    EXPECT_NE(finished.err.find("cannot write the output"), std::string::npos) << finished.err;
}

}  // namespace
}  // namespace oam::test
