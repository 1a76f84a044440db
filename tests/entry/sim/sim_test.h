// The fixture: an installation with sim.bpi and a chassis of two quick boards, and short forms for
// what an operator does with them.
#pragma once

#include <filesystem>
#include <string>

#include "support/service_test.h"

namespace oam::test {

constexpr const char* kQuickChassis = R"(# Two boards that lose no time.
board: Left
product: SIM-E1
bus: 1
slot: 2
serial: S12
mac: 02:00:53:00:00:12
start-time: 0
stop-time: 0
test-time: 0

board: Right
product: SIM-IP
bus: 1
slot: 3
serial: S13
mac: 02:00:53:00:00:13
mac: 02:00:53:00:00:14
start-time: 0
stop-time: 0
test-time: 0
)";

class SimTest : public ServiceTest {
  protected:
    void SetUp() override {
        std::filesystem::copy_file(SIM_PLUGIN_FILE, home.Path("lib/sim.bpi"));
        WriteChassis(kQuickChassis);
    }

    void WriteChassis(const std::string& text) { home.Write("oam/cfg/sim.chassis", text); }

    // Starts the service and configures every board of the chassis.
    void StartWithBoards() {
        Start();
        ASSERT_EQ(_oamDetectBoards(), OAM_SUCCESS);
        ASSERT_EQ(_oamAddDetectedBoard(nullptr), OAM_SUCCESS);
        alerts.Clear();
    }

    // What the operation's alert says. Waits for it, and for the board to take the next operation.
    Said Outcome(unsigned code, const std::string& board) {
        EXPECT_TRUE(alerts.WaitForCode(code, 1, board));
        Said outcome;
        for (const auto& said : alerts.Heard(code)) {
            if (said.source == board) outcome = said;
        }
        EXPECT_TRUE(BecomesIdle(board));
        return outcome;
    }
    Said StartBoard(const std::string& board) {
        alerts.Clear();
        EXPECT_EQ(_oamStartBoard(board.c_str(), 0), OAM_SUCCESS);
        return Outcome(OAMEVN_STARTBOARD_DONE, board);
    }
    Said StopBoard(const std::string& board) {
        alerts.Clear();
        EXPECT_EQ(_oamStopBoard(board.c_str(), 0), OAM_SUCCESS);
        return Outcome(OAMEVN_STOPBOARD_DONE, board);
    }
    Said TestBoard(const std::string& board) {
        alerts.Clear();
        EXPECT_EQ(_oamTestBoard(board.c_str(), 0x5), OAM_SUCCESS);
        return Outcome(OAMEVN_TESTBOARD_DONE, board);
    }

    oam_result Send(const std::string& board, const std::string& command) {
        return _oamSendBuffer(board.c_str(), command.data(), static_cast<unsigned>(command.size()));
    }
    int Status(const std::string& board, unsigned selector) {
        int status = -1;
        EXPECT_EQ(_oamBoardGetStatus(board.c_str(), selector, &status), OAM_SUCCESS) << board;
        return status;
    }
    template <class Predicate>
    static bool Becomes(const Predicate& predicate) {
        const auto end = std::chrono::steady_clock::now() + kLimit;
        while (!predicate()) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::yield();
        }
        return true;
    }

    // The boards' states change on other threads and nobody tells it.
    bool ReachesState(const std::string& board, int state) {
        return Becomes([&] { return Status(board, 0) == state; });
    }

  private:
    // An outcome is told just before the board takes the next operation. An automatic stop of a
    // board that is not marked for it asks without disturbing: it is refused aloud while the board
    // is busy, and silent else.
    bool BecomesIdle(const std::string& board) {
        return Becomes([&] {
            const auto before = alerts.Heard(OAMEVN_STOPBOARD_DONE).size();
            (void)_oamStopBoard(board.c_str(), OAM_AUTOMATIC | OAM_SYNCHRONIZED);
            return alerts.Heard(OAMEVN_STOPBOARD_DONE).size() == before;
        });
    }
};

inline Said Done(unsigned code, const std::string& board, const std::string& text) {
    return {code, OAM_INFORMATION, board, text};
}
inline Said Failed(unsigned code, const std::string& board, const std::string& text) {
    return {code, OAM_ERROR, board, text};
}

}  // namespace oam::test
