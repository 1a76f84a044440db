#include "object_kind.h"

#include "zol/zol.h"

namespace oam {

ObjectKind KindOf(const std::string& name) {
    if (SameName(name, "Supervisor")) return ObjectKind::kSupervisor;
    const size_t dot = name.rfind('.');
    const std::string extension = dot == std::string::npos ? "" : name.substr(dot);
    if (SameName(extension, ".bpi")) return ObjectKind::kPlugin;
    if (SameName(extension, ".emc")) return ObjectKind::kComponent;
    return ObjectKind::kBoard;
}

const char* KindText(ObjectKind kind) {
    switch (kind) {
        case ObjectKind::kSupervisor:
            return "supervisor";
        case ObjectKind::kPlugin:
            return "plug-in";
        case ObjectKind::kComponent:
            return "component";
        case ObjectKind::kBoard:
            break;
    }
    return "board";
}

std::optional<std::string> DecidedDataFile(const std::string& name) {
    switch (KindOf(name)) {
        case ObjectKind::kSupervisor:
            return "Super.xmo";
        case ObjectKind::kPlugin:
        case ObjectKind::kComponent:
            return name.substr(0, name.find('.')) + ".xmo";
        case ObjectKind::kBoard:
            break;
    }
    return std::nullopt;
}

bool SameName(const std::string& left, const std::string& right) {
    return zolStricmp(left.c_str(), right.c_str()) == 0;
}

bool NameLess::operator()(const std::string& left, const std::string& right) const {
    return zolStricmp(left.c_str(), right.c_str()) < 0;
}

}  // namespace oam
