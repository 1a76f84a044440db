// The two kinds of module and their entries. Both are judged alike; a component has nine of a board
// plug-in's seventeen entries and needs them all.
#pragma once

#include <cstddef>
#include <iterator>

namespace oam::check {

enum class ModuleKind { Plugin, Component };

enum class Entry {
#define CHECK_ENTRY(name, inComponent, required, underLock) name,
#include "entries.def"
#undef CHECK_ENTRY
};

struct EntryRow {
    const char* name;
    bool inComponent;
    bool requiredInPlugin;
    bool underLock;

    bool IsIn(ModuleKind kind) const { return kind == ModuleKind::Plugin || inComponent; }
    bool IsRequiredIn(ModuleKind kind) const {
        return kind == ModuleKind::Plugin ? requiredInPlugin : inComponent;
    }
};

inline constexpr EntryRow kEntries[] = {
#define CHECK_ENTRY(name, inComponent, required, underLock) \
    {#name, inComponent, required, underLock},
#include "entries.def"
#undef CHECK_ENTRY
};
inline constexpr std::size_t kEntryCount = std::size(kEntries);

constexpr const EntryRow& RowOf(Entry entry) { return kEntries[static_cast<std::size_t>(entry)]; }

}  // namespace oam::check
