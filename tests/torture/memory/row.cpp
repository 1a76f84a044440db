#include "row.h"

#include <sstream>

#include "support/objects.h"

namespace oam::torture {

std::ostream& operator<<(std::ostream& out, const Row& row) {
    out << row.name;
    if (*row.what != '\0') out << " (" << row.what << ')';
    return out;
}

void OpenInWorld(World& world, const char* object, unsigned mode) {
    world.handle = test::DbOpen(object, mode);
    world.openObject = object;
}

// An object without a name is refused by its commit.
void DiscardInWorld(World& world) {
    if (world.handle == 0) return;
    (void)_oamDbSetProviderMode(world.handle, true);
    (void)_oamDbRemoveKeyword(world.handle, "Name");
    (void)_oamDbCloseObject(world.handle);
    world.handle = 0;
}

bool LeavesItClosed(World&, const Outcome& outcome) {
    return outcome.code != OAM_SUCCESS && outcome.found == outcome.standing;
}

bool EmptiesValue(const Outcome& outcome, const std::string& line) {
    if (outcome.code != OAM_SUCCESS) return false;
    const std::string entry = "  " + line + '\n';
    const size_t value = entry.find('=') + 1;
    for (size_t place = 0; (place = outcome.after.find(entry, place)) != std::string::npos;
         ++place) {
        std::string emptied = outcome.after;
        emptied.erase(place + value, entry.size() - value - 1);
        if (outcome.found == emptied) return true;
    }
    return false;
}

namespace {

// Whether one is the other with something left out.
bool isCut(std::string_view cut, std::string_view whole) {
    for (const char letter : whole) {
        if (!cut.empty() && cut.front() == letter) cut.remove_prefix(1);
    }
    return cut.empty();
}

}  // namespace

bool EmptiesValues(const Outcome& outcome, std::string_view mark) {
    if (outcome.code != OAM_SUCCESS) return false;
    std::istringstream found(outcome.found);
    std::istringstream after(outcome.after);
    std::string cut;
    std::string whole;
    while (std::getline(after, whole)) {
        if (!std::getline(found, cut)) return false;
        if (cut == whole) continue;
        if (whole.find(mark) == std::string::npos || !isCut(cut, whole)) return false;
    }
    return !std::getline(found, cut);
}

}  // namespace oam::torture
