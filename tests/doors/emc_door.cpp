// Stand-in for doors/emc.h. The list of components is called "Emcs".
#include "doors/emc.h"

#include "doors/doors.h"

using oam::test::Doors;

oam_result EmcCommInit() noexcept { return Doors::The().Call("EmcCommInit"); }
void EmcCommExit() noexcept { (void)Doors::The().Call("EmcCommExit"); }

int EmcsGetCount() noexcept { return Doors::The().ListCount("Emcs"); }
const char* EmcsGetAt(int index) noexcept { return Doors::The().ListAt("Emcs", index); }

const char* EmcGetText(unsigned) noexcept { return nullptr; }

bool EmcReceivesAlerts() noexcept { return true; }

oam_result EmcAlertReceive(const oam_msg_tag* message) noexcept {
    return Doors::The().Call("EmcAlertReceive", oamMessageText(message));
}

oam_result EmcOpen(const char* name, unsigned long handle, unsigned mode) noexcept {
    return Doors::The().Call("EmcOpen", name, handle, mode);
}

oam_result EmcClose(const char* name, unsigned long handle) noexcept {
    return Doors::The().Call("EmcClose", name, handle);
}

oam_result EmcSetKeyword(const char* name, unsigned long handle, const char* keyword,
                         const char* value) noexcept {
    return Doors::The().Call("EmcSetKeyword", name, handle, keyword, value);
}

oam_result EmcGetKeyword(const char* name, unsigned long handle, const char* keyword, char* buffer,
                         unsigned size) noexcept {
    return Doors::The().Read("EmcGetKeyword", buffer, size, name, handle, keyword);
}

oam_result EmcSetQualifier(const char* name, unsigned long handle, const char* keyword,
                           const char* qualifier, const char* value) noexcept {
    return Doors::The().Call("EmcSetQualifier", name, handle, keyword, qualifier, value);
}

oam_result EmcGetQualifier(const char* name, unsigned long handle, const char* keyword,
                           const char* qualifier, char* buffer, unsigned size) noexcept {
    return Doors::The().Read("EmcGetQualifier", buffer, size, name, handle, keyword, qualifier);
}
