#include "loading/object_entries.h"

#include "loading/guarded_call.h"

namespace oam {

oam_result ObjectEntries::Init(const char* fileName) const noexcept {
    return GuardedCall({mark.module, kInitEntry, mark.about}, init, fileName);
}

oam_result ObjectEntries::Exit() const noexcept {
    return exit != nullptr ? GuardedCall({mark.module, kExitEntry, mark.about}, exit) : OAM_SUCCESS;
}

const char* ObjectEntries::GetText(unsigned code) const noexcept {
    return GuardedText({mark.module, kGetTextEntry, mark.about}, getText, code);
}

oam_result ObjectEntries::AlertReceive(const oam_msg_tag* message) const noexcept {
    return GuardedCall({mark.module, kAlertReceiveEntry, mark.about}, alertReceive, message);
}

oam_result ObjectEntries::OpenObject(unsigned long handle, unsigned mode) const noexcept {
    return GuardedCall({mark.module, kOpenObjectEntry, mark.about}, openObject, handle, mode);
}

oam_result ObjectEntries::CloseObject(unsigned long handle) const noexcept {
    return GuardedCall({mark.module, kCloseObjectEntry, mark.about}, closeObject, handle);
}

oam_result ObjectEntries::SetKeyword(unsigned long handle, const char* keyword,
                                     const char* value) const noexcept {
    return GuardedCall({mark.module, kSetKeywordEntry, mark.about}, setKeyword, handle, keyword,
                       value);
}

oam_result ObjectEntries::GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                                     unsigned size) const noexcept {
    return GuardedCall({mark.module, kGetKeywordEntry, mark.about}, getKeyword, handle, keyword,
                       buffer, size);
}

oam_result ObjectEntries::GetQualifier(unsigned long handle, const char* keyword,
                                       const char* qualifier, char* buffer,
                                       unsigned size) const noexcept {
    return GuardedCall({mark.module, kGetQualifierEntry, mark.about}, getQualifier, handle, keyword,
                       qualifier, buffer, size);
}

}  // namespace oam
