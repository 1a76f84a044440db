#include "loading/object_entries.h"

#include "loading/guarded_call.h"

namespace oam {

oam_result ObjectEntries::Init(const char* fileName) const noexcept {
    return GuardedCall(init, fileName);
}

oam_result ObjectEntries::Exit() const noexcept {
    return exit != nullptr ? GuardedCall(exit) : OAM_SUCCESS;
}

const char* ObjectEntries::GetText(unsigned code) const noexcept {
    return GuardedText(getText, code);
}

oam_result ObjectEntries::AlertReceive(const oam_msg_tag* message) const noexcept {
    return GuardedCall(alertReceive, message);
}

oam_result ObjectEntries::OpenObject(unsigned long handle, unsigned mode) const noexcept {
    return GuardedCall(openObject, handle, mode);
}

oam_result ObjectEntries::CloseObject(unsigned long handle) const noexcept {
    return GuardedCall(closeObject, handle);
}

oam_result ObjectEntries::SetKeyword(unsigned long handle, const char* keyword,
                                     const char* value) const noexcept {
    return GuardedCall(setKeyword, handle, keyword, value);
}

oam_result ObjectEntries::GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                                     unsigned size) const noexcept {
    return GuardedCall(getKeyword, handle, keyword, buffer, size);
}

oam_result ObjectEntries::GetQualifier(unsigned long handle, const char* keyword,
                                       const char* qualifier, char* buffer,
                                       unsigned size) const noexcept {
    return GuardedCall(getQualifier, handle, keyword, qualifier, buffer, size);
}

}  // namespace oam
