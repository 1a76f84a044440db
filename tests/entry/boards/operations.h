// Starting, stopping and testing a board as three rows of one table: what the three have in common
// is tested once for all of them.
#pragma once

#include <functional>
#include <ostream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "boards.h"

namespace oam::test {

struct Operation {
    const char* name;   // "Start"
    const char* entry;  // the plug-in's entry
    oam_result (*request)(const char* board, unsigned argument);
    unsigned done;  // event code of the outcome
    const char* succeeded;
    const char* failed;
    const char* noThread;
};

extern const Operation kStart;
extern const Operation kStop;
extern const Operation kTest;
inline std::ostream& operator<<(std::ostream& out, const Operation& operation) {
    return out << operation.name;
}

// Scripts what the plug-in's entry of this operation does.
void OnOperation(ModuleScript& script, const Operation& operation,
                 std::function<unsigned(const std::string& board)> act);

class OperationTest : public BoardTest {
  protected:
    void On(const Operation& operation, std::function<unsigned(const std::string& board)> act) {
        Script([&](ModuleScript& script) { OnOperation(script, operation, std::move(act)); });
    }
    // Requests the operation and waits until the plug-in holds it back in the latch.
    void HoldBack(const Operation& operation, const std::string& board, Latch& latch);
    // Lets it go on and waits for its success.
    void LetGo(const Operation& operation, const std::string& board, Latch& latch);
    // The outcome's alert comes before the board is idle again, and nothing tells the latter. An
    // automatic stop of an unmarked board asks without disturbing: it is refused aloud while the
    // board is busy, and silent when it is idle.
    bool WaitUntilIdle(const std::string& board);
    // The outcomes that were told for a board so far.
    std::vector<Said> Outcomes(const Operation& operation, const std::string& board) const;
};

// Three boards, in the order of the table: "Alpha", "Bravo", "charlie".
class AllBoardsTest : public OperationTest {
  protected:
    void SetUp() override;
    // The boards that the plug-in was asked to operate on, in order, and the threads it was on.
    std::vector<std::string> Reached(const Operation& operation) const;
    std::set<std::thread::id> ThreadsOf(const Operation& operation) const;
};

}  // namespace oam::test
