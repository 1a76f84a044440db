#include "file_check.h"

#include <dlfcn.h>

#include <algorithm>

namespace oam::check {
namespace {

constexpr std::size_t kMostNames = 6;

bool isEntry(const std::string& name, ModuleKind kind) {
    return std::any_of(std::begin(kEntries), std::end(kEntries),
                       [&](const EntryRow& row) { return row.IsIn(kind) && name == row.name; });
}

// Whether this process, which is linked as the service's server is, has the name in its own scope:
// the loader looks there first.
bool hostHas(const std::string& name) { return dlsym(RTLD_DEFAULT, name.c_str()) != nullptr; }

void checkEntries(const ElfFile& file, ModuleKind kind, std::vector<Finding>* findings) {
    for (const EntryRow& row : kEntries) {
        if (!row.IsIn(kind) || file.Exports(row.name)) continue;
        if (row.IsRequiredIn(kind)) {
            findings->push_back({Rule::Entries, row.name, "it is not exported"});
        } else {
            findings->push_back({Rule::OptionalEntries, row.name, "it is not exported"});
        }
    }
}

void checkExports(const ElfFile& file, ModuleKind kind, std::vector<Finding>* findings) {
    std::vector<std::string> leaked;
    for (const ElfSymbol& symbol : file.Symbols())
        if (symbol.isExported && !isEntry(symbol.name, kind)) leaked.push_back(symbol.name);
    if (!leaked.empty()) findings->push_back({Rule::Exports, "", "also " + NameList(leaked)});
}

// An entry that the module itself calls is in danger in every host that has such a general name.
void checkOwnCopies(const ElfFile& file, ModuleKind kind, std::vector<Finding>* findings) {
    if (file.IsSymbolic()) return;
    for (const ElfSymbol& symbol : file.Symbols()) {
        if (!symbol.isExported || !symbol.isReached || symbol.isWeak || symbol.isProtected)
            continue;
        const bool isOwnEntry = isEntry(symbol.name, kind);
        if (hostHas(symbol.name)) {
            findings->push_back({Rule::OwnCopies, isOwnEntry ? symbol.name : "",
                                 "its " + symbol.name + " is bound to the host's"});
        } else if (isOwnEntry) {
            findings->push_back({Rule::OwnCopies, symbol.name,
                                 "its own calls go to the host's, in a host that has one"});
        }
    }
}

}  // namespace

std::string NameList(const std::vector<std::string>& names) {
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), kMostNames); ++i)
        list += (i > 0 ? ", " : "") + names[i];
    if (names.size() > kMostNames)
        list += " and " + std::to_string(names.size() - kMostNames) + " more";
    return list;
}

std::vector<Finding> CheckFile(const ElfFile& file, ModuleKind kind) {
    std::vector<Finding> findings;
    checkEntries(file, kind, &findings);
    checkExports(file, kind, &findings);
    checkOwnCopies(file, kind, &findings);
    return findings;
}

}  // namespace oam::check
