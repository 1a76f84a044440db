// Loading: every library and symbol that the module names is there, and its constructors return.
// The path is the copy's, but the libraries are looked for where the module lies.
#include <dlfcn.h>

#include <string>
#include <vector>

#include "elf_file.h"
#include "entry_call.h"
#include "file_check.h"
#include "finding.h"
#include "stages.h"

namespace oam::check {
namespace {

std::string loaderError() {
    const char* error = dlerror();
    return error != nullptr ? error : "";
}

void* openNeeded(const ElfFile& file, const std::string& name) {
    for (const auto& directory : file.RunPaths()) {
        void* library = dlopen((directory + '/' + name).c_str(), RTLD_LAZY | RTLD_LOCAL);
        if (library != nullptr) return library;
    }
    return dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL);
}

bool isProvided(const std::vector<void*>& libraries, const std::string& name) {
    if (dlsym(RTLD_DEFAULT, name.c_str()) != nullptr) return true;
    for (void* library : libraries)
        if (dlsym(library, name.c_str()) != nullptr) return true;
    return false;
}

// False when something is missing.
bool checkUndefined(const ElfFile& file) {
    std::vector<void*> libraries;
    for (const auto& name : file.Needed()) {
        libraries.push_back(openNeeded(file, name));
        if (libraries.back() != nullptr) continue;
        Tell(Rule::Loads, "", loaderError());
        return false;
    }
    std::vector<std::string> missing;
    for (const ElfSymbol& symbol : file.Symbols()) {
        if (symbol.isDefined || symbol.isWeak || symbol.name.empty()) continue;
        if (!isProvided(libraries, symbol.name)) missing.push_back(symbol.name);
    }
    if (!missing.empty()) Tell(Rule::Undefined, "", "nobody has " + NameList(missing));
    return missing.empty();
}

}  // namespace

void CheckLoading(Bench& bench) {
    const auto& path = bench.Asked().module;
    if (!bench.Next()) return;
    std::string reason;
    const auto file = ElfFile::Read(path, &reason);
    if (!file || !checkUndefined(*file)) return;
    // Its constructors run in here.
    CallRecord* loading = Journal().Begin(CallKind::Entry, "loading", "");
    const bool isLoaded = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL) != nullptr;
    Journal().End(loading);
    Journal().isUsable = isLoaded;
    if (!isLoaded) Tell(Rule::Loads, "", loaderError());
}

}  // namespace oam::check
