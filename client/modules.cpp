#include "modules.h"

#include "opened_object.h"

namespace oam {
namespace {

constexpr const char* kSupervisor = "Supervisor";

std::vector<std::string> elements(const std::string& name, const std::string& list) {
    const OpenedObject object(name, OAM_OPEN_READ);
    std::vector<std::string> values;
    const unsigned count = object.Count(list);
    for (unsigned i = 0; i < count; ++i) values.push_back(object.Keyword(Element(list, i)).text);
    return values;
}

}  // namespace

std::vector<ModuleFacts> LoadedModules() {
    std::vector<ModuleFacts> modules;
    for (const std::string& name : elements(kSupervisor, "BoardPlugins"))
        modules.push_back({name, ObjectKind::kPlugin, elements(name, "Products")});
    for (const std::string& name : elements(kSupervisor, "ExtendedManagementComponents"))
        modules.push_back({name, ObjectKind::kComponent, {}});
    return modules;
}

std::vector<std::string> ServedProducts() { return elements(kSupervisor, "Products"); }

}  // namespace oam
