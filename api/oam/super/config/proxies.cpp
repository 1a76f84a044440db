// The proxies: every operation goes to the room that owns the data, with the object's own name
// first and everything else unchanged.

#include "doors/board.h"
#include "doors/emc.h"
#include "objects/kinds.h"

FileProxy::FileProxy(const char* name) noexcept : KOR_CMObject(name, name) {
    const std::string_view whole = name;
    const size_t dot = whole.find('.');
    if (dot == std::string_view::npos) return;
    oam::OwnedText dataFile;
    if (dataFile.Join(whole.substr(0, dot + 1), "xmo")) SetDataFileName(dataFile.Get());
}

// TrapCreate is told the board first; BoardCreate wants the product first.
oam_result CMOBoard::TrapCreate(const char* name, const char* product) noexcept {
    return BoardCreate(product, name);
}

oam_result CMOBoard::TrapDelete() noexcept { return BoardDelete(Name()); }

#define FORWARD_TRAPS(Class, Glue)                                                            \
    oam_result Class::TrapOpen(unsigned long handle, unsigned mode) noexcept {                \
        return Glue##Open(Name(), handle, mode);                                              \
    }                                                                                         \
    oam_result Class::TrapClose(unsigned long handle) noexcept {                              \
        return Glue##Close(Name(), handle);                                                   \
    }                                                                                         \
    oam_result Class::TrapSetKeyword(unsigned long handle, const char* keyword,               \
                                     const char* value) noexcept {                            \
        return Glue##SetKeyword(Name(), handle, keyword, value);                              \
    }                                                                                         \
    oam_result Class::TrapGetKeyword(unsigned long handle, const char* keyword, char* buffer, \
                                     unsigned size) noexcept {                                \
        return Glue##GetKeyword(Name(), handle, keyword, buffer, size);                       \
    }                                                                                         \
    oam_result Class::TrapSetQualifier(unsigned long handle, const char* keyword,             \
                                       const char* qualifier, const char* value) noexcept {   \
        return Glue##SetQualifier(Name(), handle, keyword, qualifier, value);                 \
    }                                                                                         \
    oam_result Class::TrapGetQualifier(unsigned long handle, const char* keyword,             \
                                       const char* qualifier, char* buffer,                   \
                                       unsigned size) noexcept {                              \
        return Glue##GetQualifier(Name(), handle, keyword, qualifier, buffer, size);          \
    }

FORWARD_TRAPS(CMOBoard, Board)
FORWARD_TRAPS(CMOPlugin, Plugin)
FORWARD_TRAPS(CMOEmc, Emc)
