#include "configured_boards.h"

#include <array>

#include "kit/kept_text.h"
#include "kit/text_scan.h"
#include "oam/entry.h"

namespace oam::sim {
namespace {

oam_result askTable(const std::string& name, ConfiguredBoard* board) {
    std::array<char, kit::kLongestName + 1> product;
    Location location;
    if (auto failed = _oamBoardGetBusSlot(name.c_str(), &location.bus, &location.slot)) {
        return failed;
    }
    if (auto failed = _oamBoardGetProduct(name.c_str(), product.data(), product.size())) {
        return failed;
    }
    board->product = product.data();
    board->location = location;
    return OAM_SUCCESS;
}

}  // namespace

oam_result ConfiguredBoards::Find(const std::string& name, ConfiguredBoard* board) {
    ConfiguredBoard found;
    const auto answer = askTable(name, &found);
    if (answer && answer != OAMERR_SERVER_NOT_RUNNING) return answer;

    const std::lock_guard hold(lock_);
    if (answer) {
        const auto known = boards_.find(kit::lowerCase(name));
        if (known == boards_.end()) return OAMERR_NOT_FOUND;
        *board = known->second;
        return OAM_SUCCESS;
    }
    auto& known = boards_[kit::lowerCase(name)];
    found.thresholds = known.thresholds;
    known = found;
    *board = found;
    return OAM_SUCCESS;
}

void ConfiguredBoards::Remember(const std::string& name, const ConfiguredBoard& board) {
    const std::lock_guard hold(lock_);
    boards_[kit::lowerCase(name)] = board;
}

void ConfiguredBoards::Rename(std::string_view from, std::string_view to) {
    const std::lock_guard hold(lock_);
    auto moved = boards_.extract(kit::lowerCase(from));
    if (moved.empty()) return;
    moved.key() = kit::lowerCase(to);
    boards_.erase(moved.key());
    boards_.insert(std::move(moved));
}

void ConfiguredBoards::Forget(std::string_view name) {
    const std::lock_guard hold(lock_);
    boards_.erase(kit::lowerCase(name));
}

}  // namespace oam::sim
