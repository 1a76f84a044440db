#include "detected_boards.h"

#include <algorithm>
#include <array>
#include <utility>

#include "kit/text_scan.h"

namespace oam::sim {
namespace {

constexpr std::string_view kFamily = "DetectedBoards";
constexpr std::string_view kCount = ".Count";

struct Member {
    std::string_view name;
    std::string_view type;
    std::string (*get)(const DetectedBoard& board);
};

constexpr std::array kMembers = {
    Member{".Name", "String", [](const DetectedBoard& board) { return board.name; }},
    Member{".Product", "String", [](const DetectedBoard& board) { return board.product; }},
    Member{".Location.PCI.Bus", "Integer",
           [](const DetectedBoard& board) { return std::to_string(board.location.bus); }},
    Member{".Location.PCI.Slot", "Integer",
           [](const DetectedBoard& board) { return std::to_string(board.location.slot); }},
};

// The row of "DetectedBoards[i].Member" and its i; null for anything else.
const Member* findMember(std::string_view keyword, std::size_t* index) {
    const auto open = keyword.find('[');
    const auto close = keyword.find(']');
    if (open != kFamily.size() || close == std::string_view::npos) return nullptr;
    const auto number = kit::boundedNumber(keyword.substr(open + 1, close - open - 1), 0, 1 << 30);
    if (!number) return nullptr;
    *index = static_cast<std::size_t>(*number);
    const auto name = keyword.substr(close + 1);
    const auto member = std::find_if(kMembers.begin(), kMembers.end(), [&](const Member& row) {
        return kit::sameText(row.name, name);
    });
    return member == kMembers.end() ? nullptr : member;
}

bool isCount(std::string_view keyword) {
    return kit::sameText(keyword.substr(std::min(kFamily.size(), keyword.size())), kCount);
}

}  // namespace

bool DetectedBoards::Holds(std::string_view keyword) {
    if (!kit::sameText(keyword.substr(0, kFamily.size()), kFamily)) return false;
    const auto rest = keyword.substr(kFamily.size());
    return rest.empty() || rest.front() == '.' || rest.front() == '[';
}

void DetectedBoards::Replace(std::vector<DetectedBoard> boards) {
    const std::lock_guard hold(lock_);
    boards_ = std::move(boards);
}

std::optional<std::string> DetectedBoards::Get(std::string_view keyword) const {
    if (!Holds(keyword)) return {};
    const std::lock_guard hold(lock_);
    if (isCount(keyword)) return std::to_string(boards_.size());
    std::size_t index = 0;
    const auto* const member = findMember(keyword, &index);
    if (member == nullptr || index >= boards_.size()) return {};
    return member->get(boards_[index]);
}

std::optional<std::string> DetectedBoards::GetQualifier(std::string_view keyword,
                                                        std::string_view qualifier) const {
    if (!Get(keyword)) return {};
    if (kit::sameText(qualifier, "ReadOnly")) return "Yes";
    if (!kit::sameText(qualifier, "Type")) return {};
    std::size_t index = 0;
    const auto* const member = findMember(keyword, &index);
    return std::string(member == nullptr ? "Integer" : member->type);
}

}  // namespace oam::sim
