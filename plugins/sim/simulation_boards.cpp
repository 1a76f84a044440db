// Operations, commands and status: the entries that run with no lock held, several at once.
#include <array>

#include "board_command.h"
#include "kit/text_scan.h"
#include "sim_codes.h"
#include "simulation.h"

namespace oam::sim {
namespace {

// By selector.
constexpr std::array<int (*)(const BoardStatus&), 4> kStatus = {
    [](const BoardStatus& board) { return static_cast<int>(board.state); },
    [](const BoardStatus& board) { return board.readings.temperature; },
    [](const BoardStatus& board) { return board.readings.fan; },
    [](const BoardStatus& board) { return static_cast<int>(board.uptime.count()); },
};

}  // namespace

oam_result Simulation::Locate(const std::string& board, std::shared_ptr<SimulatedBoard>* found) {
    ConfiguredBoard configured;
    if (auto failed = configured_.Find(board, &configured)) return failed;
    auto inSlot = chassis_->At(configured.location);
    if (!inSlot) return SIM_BOARD_NOT_IN_SLOT;
    if (!kit::sameText(inSlot->Plan().product, configured.product)) return SIM_WRONG_PRODUCT;
    inSlot->SetThresholds(configured.thresholds.value_or(CurrentSettings()->thresholds));
    *found = std::move(inSlot);
    return OAM_SUCCESS;
}

oam_result Simulation::Operate(Operation operation, const std::string& board) {
    std::shared_ptr<SimulatedBoard> found;
    if (auto failed = Locate(board, &found)) return failed;
    const auto result = found->Run(operation, CurrentSettings()->operations[operation]);
    monitor_.Wake();
    return result;
}

oam_result Simulation::SendBuffer(const std::string& board, std::string_view command) {
    std::shared_ptr<SimulatedBoard> found;
    if (auto failed = Locate(board, &found)) return failed;
    std::vector<BoardEvent> events;
    const auto result = runCommand(command, found.get(), &events);
    raiseEvents(events, objectName_);
    return result;
}

oam_result Simulation::GetBoardStatus(const std::string& board, unsigned int selector,
                                      int* status) {
    if (selector >= kStatus.size()) return OAMERR_NOT_SUPPORTED_WARNING;
    if (status == nullptr) return OAMERR_GET_BOARD_STATUS_FAIL;
    std::shared_ptr<SimulatedBoard> found;
    if (auto failed = Locate(board, &found)) return failed;
    BoardStatus read;
    if (auto failed = found->Read(&read)) return failed;
    *status = kStatus[selector](read);
    return OAM_SUCCESS;
}

}  // namespace oam::sim
