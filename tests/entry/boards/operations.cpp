#include "operations.h"

#include <algorithm>

#include "elsewhere.h"

namespace oam::test {

const Operation kStart = {"Start",
                          "StartBoard",
                          _oamStartBoard,
                          OAMEVN_STARTBOARD_DONE,
                          "Board is started.\n",
                          "Failed to start board.\n",
                          "Can't create thread to start board."};
const Operation kStop = {"Stop",
                         "StopBoard",
                         _oamStopBoard,
                         OAMEVN_STOPBOARD_DONE,
                         "Board is stopped.",
                         "Failed to stop board.",
                         "Can't create thread to stop board."};
const Operation kTest = {"Test",
                         "TestBoard",
                         _oamTestBoard,
                         OAMEVN_TESTBOARD_DONE,
                         "Test of board was successful.",
                         "Test of board failed.",
                         "Can't create thread to start board."};

void OnOperation(ModuleScript& script, const Operation& operation,
                 std::function<unsigned(const std::string& board)> act) {
    if (operation.done == kStart.done) {
        script.startBoard = [act](const char* board) { return act(board); };
    } else if (operation.done == kStop.done) {
        script.stopBoard = [act](const char* board) { return act(board); };
    } else {
        script.testBoard = [act](const char* board, unsigned) { return act(board); };
    }
}

void OperationTest::HoldBack(const Operation& operation, const std::string& board, Latch& latch) {
    On(operation, [&latch, board](const std::string& reached) {
        if (reached == board) latch.Wait();
        return 0u;
    });
    ASSERT_EQ(operation.request(board.c_str(), 0), OAM_SUCCESS);
    ASSERT_TRUE(latch.WaitForArrival());
}

void OperationTest::LetGo(const Operation& operation, const std::string& board, Latch& latch) {
    latch.Open();
    EXPECT_TRUE(alerts.WaitFor([&](const std::vector<Alert>& all) {
        return std::any_of(all.begin(), all.end(), [&](const Alert& alert) {
            return alert.client == kServer && alert.code == operation.done && alert.severity == 0 &&
                   alert.source == board;
        });
    })) << operation.name;
}

bool OperationTest::WaitUntilIdle(const std::string& board) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (std::chrono::steady_clock::now() < end) {
        const size_t before = Outcomes(kStop, board).size();
        if (_oamStopBoard(board.c_str(), OAM_AUTOMATIC | OAM_SYNCHRONIZED) != OAM_SUCCESS) {
            return false;
        }
        if (Outcomes(kStop, board).size() == before) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}

std::vector<Said> OperationTest::Outcomes(const Operation& operation,
                                          const std::string& board) const {
    std::vector<Said> outcomes = alerts.Heard(operation.done);
    std::erase_if(outcomes, [&board](const Said& said) { return said.source != board; });
    return outcomes;
}

void AllBoardsTest::SetUp() {
    OperationTest::SetUp();
    for (const char* board : {"charlie", "Alpha", "Bravo"}) Configure(board);
}

std::vector<std::string> AllBoardsTest::Reached(const Operation& operation) const {
    std::vector<std::string> boards;
    for (const auto& call : recorder.Calls(operation.entry)) boards.push_back(call.arguments.at(0));
    return boards;
}

std::set<std::thread::id> AllBoardsTest::ThreadsOf(const Operation& operation) const {
    std::set<std::thread::id> threads;
    for (const auto& call : recorder.Calls(operation.entry)) threads.insert(call.thread);
    return threads;
}

}  // namespace oam::test
