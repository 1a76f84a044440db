// The proxies: every operation goes to the room that owns the data.

#include "doors/board.h"
#include "doors/emc.h"
#include "objects/kinds.h"

namespace {

constexpr ObjectGlue kBoardGlue = {&BoardOpen,       &BoardClose,        &BoardSetKeyword,
                                   &BoardGetKeyword, &BoardSetQualifier, &BoardGetQualifier};
constexpr ObjectGlue kPluginGlue = {&PluginOpen,       &PluginClose,        &PluginSetKeyword,
                                    &PluginGetKeyword, &PluginSetQualifier, &PluginGetQualifier};
constexpr ObjectGlue kEmcGlue = {&EmcOpen,       &EmcClose,        &EmcSetKeyword,
                                 &EmcGetKeyword, &EmcSetQualifier, &EmcGetQualifier};

}  // namespace

oam_result ProxyObject::TrapOpen(unsigned long handle, unsigned mode) noexcept {
    return glue_.open(Name(), handle, mode);
}

oam_result ProxyObject::TrapClose(unsigned long handle) noexcept {
    return glue_.close(Name(), handle);
}

oam_result ProxyObject::TrapSetKeyword(unsigned long handle, const char* keyword,
                                       const char* value) noexcept {
    return glue_.setKeyword(Name(), handle, keyword, value);
}

oam_result ProxyObject::TrapGetKeyword(unsigned long handle, const char* keyword, char* buffer,
                                       unsigned size) noexcept {
    return glue_.getKeyword(Name(), handle, keyword, buffer, size);
}

oam_result ProxyObject::TrapSetQualifier(unsigned long handle, const char* keyword,
                                         const char* qualifier, const char* value) noexcept {
    return glue_.setQualifier(Name(), handle, keyword, qualifier, value);
}

oam_result ProxyObject::TrapGetQualifier(unsigned long handle, const char* keyword,
                                         const char* qualifier, char* buffer,
                                         unsigned size) noexcept {
    return glue_.getQualifier(Name(), handle, keyword, qualifier, buffer, size);
}

CMOBoard::CMOBoard(const char* name, const char* dataFileName) noexcept
    : ProxyObject(name, dataFileName, kBoardGlue) {}

// TrapCreate is told the board first; BoardCreate wants the product first.
oam_result CMOBoard::TrapCreate(const char* name, const char* product) noexcept {
    return BoardCreate(product, name);
}

oam_result CMOBoard::TrapDelete() noexcept { return BoardDelete(Name()); }

FileProxy::FileProxy(const char* name, const ObjectGlue& glue) noexcept
    : ProxyObject(name, name, glue) {
    const std::string_view whole = name;
    const size_t dot = whole.find('.');
    if (dot == std::string_view::npos) return;
    oam::OwnedText dataFile;
    // Without memory there is no text to set, which leaves the object incomplete.
    (void)dataFile.Join(whole.substr(0, dot + 1), "xmo");
    (void)SetDataFileName(dataFile.Get());
}

CMOPlugin::CMOPlugin(const char* name) noexcept : FileProxy(name, kPluginGlue) {}

CMOEmc::CMOEmc(const char* name) noexcept : FileProxy(name, kEmcGlue) {}
