#include "board_command.h"

#include <algorithm>
#include <array>
#include <utility>

#include "sim_codes.h"
#include "text_scan.h"

namespace oam::sim {
namespace {

using Events = std::vector<BoardEvent>;

// Takes the command's arguments; false when they are not what it wants.
using Action = bool (*)(std::string_view arguments, SimulatedBoard* board, Events* events);

bool setTemperature(std::string_view arguments, SimulatedBoard* board, Events* events) {
    const auto value = kit::boundedNumber(arguments, kCoolest, kHottest);
    if (!value) return false;
    board->SetTemperature(static_cast<int>(*value));
    *events = board->Look(Clock::now());
    return true;
}

bool setFan(std::string_view arguments, SimulatedBoard* board, Events* events) {
    const auto value = kit::boundedNumber(arguments, 0, kFastestFan);
    if (!value) return false;
    board->SetFan(static_cast<int>(*value));
    *events = board->Look(Clock::now());
    return true;
}

bool failNext(std::string_view arguments, SimulatedBoard* board, Events*) {
    const auto word = takePart(&arguments, ' ');
    const auto times =
        kit::trimmed(arguments).empty() ? 1 : kit::boundedNumber(kit::trimmed(arguments), 0, 1000);
    for (const auto operation : {Operation::Start, Operation::Stop, Operation::Test}) {
        if (!kit::sameText(word, rowOf(operation).word) || !times) continue;
        board->FailNext(operation, static_cast<unsigned int>(*times));
        return true;
    }
    return false;
}

bool die(std::string_view arguments, SimulatedBoard* board, Events* events) {
    if (!arguments.empty()) return false;
    *events = board->Die();
    return true;
}

bool remove(std::string_view arguments, SimulatedBoard* board, Events* events) {
    if (!arguments.empty()) return false;
    *events = board->Remove();
    return true;
}

bool insert(std::string_view arguments, SimulatedBoard* board, Events*) {
    if (!arguments.empty()) return false;
    board->Insert();
    return true;
}

struct Command {
    std::string_view word;
    Action run;
    bool needsBoard;
};

constexpr std::array kCommands = {
    Command{"temperature", setTemperature, true},
    Command{"fan", setFan, true},
    Command{"fail", failNext, true},
    Command{"dead", die, true},
    Command{"remove", remove, true},
    Command{"insert", insert, false},
};

}  // namespace

oam_result runCommand(std::string_view text, SimulatedBoard* board, Events* events) {
    if (text.ends_with('\0')) text.remove_suffix(1);
    text = kit::trimmed(text);
    const auto word = takePart(&text, ' ');
    const auto command = std::find_if(kCommands.begin(), kCommands.end(), [&](const Command& row) {
        return kit::sameText(row.word, word);
    });
    if (command == kCommands.end()) return OAMERR_SEND_BUFFER_FAIL;
    if (command->needsBoard && !board->IsPresent()) return SIM_BOARD_NOT_IN_SLOT;
    return command->run(kit::trimmed(text), board, events) ? OAM_SUCCESS : OAMERR_SEND_BUFFER_FAIL;
}

}  // namespace oam::sim
