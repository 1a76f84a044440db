// What other rooms may ask of the extended management components.
#pragma once

#include "oam/codes.h"
#include "oam/message.h"

oam_result EmcCommInit() noexcept;
void EmcCommExit() noexcept;

// The loaded components' file names, by position in name order.
int EmcsGetCount() noexcept;
const char* EmcsGetAt(int index) noexcept;

// Null when no component knows the code.
const char* EmcGetText(unsigned code) noexcept;
// Whether there is any component to receive alerts.
bool EmcReceivesAlerts() noexcept;
// The last failure of a component.
oam_result EmcAlertReceive(const oam_msg_tag* message) noexcept;

// One object access each, passed to the named component; OAMERR_NOT_FOUND when it is not loaded.
oam_result EmcOpen(const char* name, unsigned long handle, unsigned mode) noexcept;
oam_result EmcClose(const char* name, unsigned long handle) noexcept;
oam_result EmcSetKeyword(const char* name, unsigned long handle, const char* keyword,
                         const char* value) noexcept;
oam_result EmcGetKeyword(const char* name, unsigned long handle, const char* keyword, char* buffer,
                         unsigned size) noexcept;
// Stored in the database; the name plays no part.
oam_result EmcSetQualifier(const char* name, unsigned long handle, const char* keyword,
                           const char* qualifier, const char* value) noexcept;
oam_result EmcGetQualifier(const char* name, unsigned long handle, const char* keyword,
                           const char* qualifier, char* buffer, unsigned size) noexcept;
