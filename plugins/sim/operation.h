// What can be done to a board, and the states that it passes through.
//
// The rows are the only place where start, stop and test differ: one worker runs them all.
#pragma once

#include <array>
#include <cstddef>

#include "oam/codes.h"

namespace oam::sim {

// The values are what GetBoardStatus answers.
enum class RunState {
    Stopped = 0,
    Starting = 1,
    Running = 2,
    Stopping = 3,
    Testing = 4,
    Failed = 5
};

enum class Operation : std::size_t { Start, Stop, Test };

struct OperationRow {
    const char* word;
    RunState during;
    oam_result failure;
};

inline constexpr std::array kOperations = {
    OperationRow{"start", RunState::Starting, OAMERR_START_BOARD_FAIL},
    OperationRow{"stop", RunState::Stopping, OAMERR_STOP_BOARD_FAIL},
    OperationRow{"test", RunState::Testing, OAMERR_BOARD_SELFTEST_FAIL},
};

inline constexpr std::size_t kOperationCount = kOperations.size();

constexpr const OperationRow& rowOf(Operation operation) {
    return kOperations[static_cast<std::size_t>(operation)];
}

// One value for each operation.
template <class Value>
class PerOperation {
  public:
    Value& operator[](Operation operation) { return values_[static_cast<std::size_t>(operation)]; }
    const Value& operator[](Operation operation) const {
        return values_[static_cast<std::size_t>(operation)];
    }

  private:
    std::array<Value, kOperationCount> values_{};
};

}  // namespace oam::sim
