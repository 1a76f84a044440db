#include "board_selection.h"

#include <algorithm>
#include <set>

#include "arguments.h"
#include "failure.h"
#include "service.h"

namespace oam {

void BoardSelection::Declare(Arguments& arguments, const std::string& description) {
    arguments.Optional("NAME", &names_, description);
    arguments.Flag("--all", &all_, "All of them");
}

void BoardSelection::CheckOne() const {
    Check();
    if (names_.size() > 1) throw UsageError("give one NAME, or --all");
}

void BoardSelection::Check() const {
    if (all_ == !names_.empty()) throw UsageError("give a NAME or --all, and not both");
    // To the service an empty name means every board.
    if (std::find(names_.begin(), names_.end(), "") != names_.end())
        throw UsageError("an empty NAME names no board");
}

std::optional<std::string> BoardSelection::One() const {
    return all_ ? std::nullopt : std::optional(names_.at(0));
}

std::vector<std::string> BoardSelection::Resolve(Service& service) const {
    if (all_) return service.BoardNames();
    std::set<std::string, NameLess> seen;
    std::vector<std::string> names;
    for (const std::string& given : names_) {
        const std::string name = service.RequireBoard(given);
        if (seen.insert(name).second) names.push_back(name);
    }
    return names;
}

}  // namespace oam
