// The loaded plug-ins with their products, and the components.
#pragma once

#include <string>
#include <vector>

#include "object_kind.h"

namespace oam {

struct ModuleFacts {
    std::string name;
    ObjectKind kind;                    // kPlugin or kComponent
    std::vector<std::string> products;  // a plug-in's
};

std::vector<ModuleFacts> LoadedModules();

// What every loaded plug-in serves.
std::vector<std::string> ServedProducts();

}  // namespace oam
