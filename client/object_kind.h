// What an object is follows from its name alone, also when the service reads it back at a start.
#pragma once

#include <optional>
#include <string>

namespace oam {

enum class ObjectKind { kSupervisor, kPlugin, kComponent, kBoard };

ObjectKind KindOf(const std::string& name);

// "supervisor", "plug-in", "component", "board"
const char* KindText(ObjectKind kind);

// The data file that the name itself decides: "Super.xmo" for the Supervisor, the name up to its
// first dot for plug-ins and components. A board's file is the one it was found in.
std::optional<std::string> DecidedDataFile(const std::string& name);

// As the service compares names.
bool SameName(const std::string& left, const std::string& right);

struct NameLess {
    bool operator()(const std::string& left, const std::string& right) const;
};

}  // namespace oam
