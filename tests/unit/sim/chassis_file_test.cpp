#include "chassis_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "builtin_chassis.h"

namespace oam::sim {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

constexpr const char* kLeft = "board: Left\nproduct: E1\nbus: 1\nslot: 2\n";

std::string exampleChassis() {
    std::ifstream file(SIM_EXAMPLE_CHASSIS_FILE);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> problemsOf(const std::string& text) {
    std::vector<std::string> problems;
    for (const auto& problem : parseChassis(text).problems) {
        problems.push_back(std::to_string(problem.line) + ": " + problem.what);
    }
    return problems;
}

TEST(ChassisFile, ReadsEverythingThatABoardCanHave) {
    const auto reading = parseChassis(
        "# comment\r\n\r\n  Board :  Left one \r\nPRODUCT: E1\nbus: 255\nslot:31\n"
        "serial: S:1\nmac: 02:00:53:aa:BB:0f\nmac: 02:00:53:00:00:01\n"
        "temperature: 300, 900 after 2s\nfan: 2500\nstart-time: 2s\nstop-time: 5\n"
        "test-time: 1m\nstart: fail, ok\nstop: code 0x7\ntest: hang 1s");
    EXPECT_THAT(reading.problems, SizeIs(0));
    ASSERT_THAT(reading.boards, SizeIs(1));
    auto board = reading.boards[0];
    EXPECT_EQ(board.name, "Left one");
    EXPECT_EQ(board.product, "E1");
    EXPECT_EQ(board.location, (Location{255, 31}));
    EXPECT_EQ(board.serial, "S:1");
    EXPECT_THAT(board.macAddresses, ElementsAre("02:00:53:aa:BB:0f", "02:00:53:00:00:01"));
    EXPECT_EQ(board.temperature.ValueAt(2s), 900);
    EXPECT_EQ(board.fan.ValueAt(0s), 2500);
    EXPECT_EQ(board.times[Operation::Start], 2s);
    EXPECT_EQ(board.times[Operation::Stop], 5ms);
    EXPECT_EQ(board.times[Operation::Test], 1min);
    EXPECT_EQ(board.scripts[Operation::Start].TakeNext()->kind, Outcome::Kind::Fail);
    EXPECT_EQ(board.scripts[Operation::Stop].TakeNext()->code, oam_result{7});
    EXPECT_EQ(board.scripts[Operation::Test].TakeNext()->hang, 1s);
}

TEST(ChassisFile, ReadsTheBuiltInChassisWithoutAProblem) {
    const auto reading = parseChassis(builtInChassis());
    EXPECT_THAT(reading.problems, SizeIs(0));
    EXPECT_THAT(reading.boards, SizeIs(4));
}

TEST(ChassisFile, ReadsTheExampleWithoutAProblem) {
    const auto reading = parseChassis(exampleChassis());
    EXPECT_THAT(reading.problems, SizeIs(0));
    EXPECT_GT(reading.boards.size(), 3u);
}

TEST(ChassisFile, LeavesOutABadLineAndUsesTheRest) {
    const std::string text = std::string(kLeft) + "slot: 32\nserial: S1\n";
    const auto reading = parseChassis(text);
    ASSERT_THAT(reading.boards, SizeIs(1));
    EXPECT_EQ(reading.boards[0].location.slot, 2u);
    EXPECT_EQ(reading.boards[0].serial, "S1");
    EXPECT_THAT(problemsOf(text),
                ElementsAre("5: \"slot\" wants a number from 0 to 31, not \"32\""));
}

TEST(ChassisFile, TellsEachKindOfBadLine) {
    const std::string prefix = kLeft;
    const auto problem = [&](const std::string& line) { return problemsOf(prefix + line).at(0); };
    EXPECT_EQ(problem("nothing"), "5: no \"key: value\": \"nothing\"");
    EXPECT_EQ(problem("colour: red"), "5: unknown key \"colour\"");
    EXPECT_EQ(problem(": red"), "5: unknown key \"\"");
    EXPECT_EQ(problem("mac: 1"), "5: \"mac\" wants an address like 02:00:00:00:00:01, not \"1\"");
    EXPECT_THAT(problem("mac: 02:00:00:00:00:0g"), HasSubstr("wants an address"));
    EXPECT_THAT(problem("serial: a<b"), HasSubstr("wants a serial number"));
    EXPECT_THAT(problem("product: a\\b"), HasSubstr("wants a product's name"));
    EXPECT_THAT(problem("bus: 99999999999999999999"), HasSubstr("wants a number from 0 to 255"));
    EXPECT_THAT(problem("fan: -1"), HasSubstr("wants a curve"));
    EXPECT_THAT(problem("stop-time: never"), HasSubstr("wants a time"));
    EXPECT_THAT(problem("test: maybe"), HasSubstr("wants outcomes"));
    EXPECT_EQ(problem(std::string(1025, 'x')), "5: the line is too long");
}

TEST(ChassisFile, TakesAtMostFourAddresses) {
    std::string text = kLeft;
    for (int i = 0; i < 5; ++i) text += "mac: 02:00:00:00:00:01\n";
    EXPECT_THAT(parseChassis(text).boards.at(0).macAddresses, SizeIs(4));
    EXPECT_THAT(problemsOf(text), ElementsAre(HasSubstr("9: \"mac\" wants at most four lines")));
}

TEST(ChassisFile, LeavesOutABoardThatLacksSomething) {
    EXPECT_THAT(problemsOf("board: A\nbus: 1\nslot: 1"),
                ElementsAre("1: \"A\" is left out: it has no product"));
    EXPECT_THAT(problemsOf("board: A\nproduct: E1\nbus: 1"),
                ElementsAre("1: \"A\" is left out: it has no bus and slot"));
    EXPECT_THAT(problemsOf("board: A\nproduct: E1\nbus: 0\nslot: 0"),
                ElementsAre("1: \"A\" is left out: bus 0 slot 0 is no place"));
}

TEST(ChassisFile, LeavesOutABoardWhoseNameOrPlaceIsTaken) {
    const std::string left = kLeft;
    EXPECT_THAT(problemsOf(left + "board: LEFT\nproduct: E1\nbus: 1\nslot: 3\n"),
                ElementsAre("5: \"LEFT\" is left out: its name is taken"));
    EXPECT_THAT(problemsOf(left + "board: Right\nproduct: E1\nbus: 1\nslot: 2\n"),
                ElementsAre("5: \"Right\" is left out: its bus and slot are taken"));
}

TEST(ChassisFile, SkipsTheLinesOfABoardThatCannotBeNamed) {
    const std::string text = "slot: 3\nboard: a<b\nslot: 4\nbus: what\n" + std::string(kLeft);
    EXPECT_THAT(problemsOf(text), ElementsAre("1: \"slot\" stands before the first board",
                                              "2: this cannot name a board: \"a<b\""));
    EXPECT_THAT(parseChassis(text).boards, SizeIs(1));
}

TEST(ChassisFile, TellsOnlyTheFirstProblemsAndCountsTheRest) {
    std::string text;
    for (std::size_t i = 0; i < kMostProblems + 10; ++i) text += "x\n";
    const auto problems = problemsOf(text);
    ASSERT_THAT(problems, SizeIs(kMostProblems + 1));
    EXPECT_EQ(problems.back(), "0: 10 more problems");
}

TEST(ChassisFile, TakesNoMoreBoardsThanItMay) {
    std::string text;
    for (std::size_t i = 1; i <= kMostBoards + 100; ++i) {
        text += "board: B" + std::to_string(i) + "\nproduct: E1\nbus: " + std::to_string(i / 32) +
                "\nslot: " + std::to_string(i % 32) + "\n";
    }
    EXPECT_THAT(parseChassis(text).boards, SizeIs(kMostBoards));
}

TEST(ChassisFile, ReadsNoMoreThanTheLongestFile) {
    const auto blank = std::string(kLongestLine - 1, ' ') + "\n";
    std::string text;
    while (text.size() <= kLongestFile) text += blank;
    EXPECT_THAT(problemsOf(text), ElementsAre("0: the file is too long; its end is not read"));
}

TEST(ChassisFile, SurvivesAnyBytes) {
    std::mt19937 random(20);
    const std::string sample = std::string(builtInChassis()) + exampleChassis();
    for (int round = 0; round < 2000; ++round) {
        std::string text = sample.substr(random() % sample.size(), random() % 400);
        for (int i = 0; i < 8 && !text.empty(); ++i) {
            text[random() % text.size()] = static_cast<char>(random());
        }
        const auto reading = parseChassis(text);
        EXPECT_LE(reading.problems.size(), kMostProblems + 1);
        for (const auto& board : reading.boards) EXPECT_TRUE(board.location.IsPlaced());
    }
}

}  // namespace
}  // namespace oam::sim
