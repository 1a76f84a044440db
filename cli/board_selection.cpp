#include "board_selection.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <set>

#include "board_facts.h"
#include "failure.h"
#include "object_kind.h"

namespace oam {

void BoardSelection::Declare(CLI::App& app, const std::string& description, bool several) {
    app.add_option("NAME", names_, description)->expected(0, several ? -1 : 1);
    app.add_flag("--all", all_, "All of them");
}

void BoardSelection::Check() const {
    if (all_ == !names_.empty()) throw UsageError("give a NAME or --all, and not both");
    // To the service an empty name means every board.
    if (std::find(names_.begin(), names_.end(), "") != names_.end())
        throw UsageError("an empty NAME names no board");
}

std::vector<std::string> BoardSelection::Resolve() const {
    if (all_) return BoardNames();
    std::set<std::string, NameLess> seen;
    std::vector<std::string> names;
    for (const std::string& given : names_) {
        const std::string name = RequireBoard(given);
        if (seen.insert(name).second) names.push_back(name);
    }
    return names;
}

}  // namespace oam
