// What other rooms may ask of the alert system.
#pragma once

#include "oam/codes.h"
#include "oam/message.h"

// Formats the text (at most 255 characters are kept) and raises the alert; the result is that of
// _oamAlertNotify, or OAMERR_NOT_ENOUGH_MEMORY with nothing logged or delivered. May be called
// under any lock but the alert system's own: a thread that holds a database lock never waits for a
// receiver.
oam_result AlertNotify(unsigned code, unsigned severity, const char* source, const char* format,
                       ...) noexcept __attribute__((format(printf, 4, 5)));

// From AlertInit to AlertExit alerts are delivered; before and after they are only logged.
// AlertInit: OAMERR_NOT_ENOUGH_MEMORY when the report's path does not fit.
oam_result AlertInit() noexcept;
// Ends all registrations. The callback stays, and so does an open log.
void AlertExit() noexcept;

// Opens the one log stream, keeping the previous file once as "*.bak". OAMERR_ALREADY_EXISTS when a
// log is open, OAMERR_FILE_WRITE_ERROR, OAMERR_NOT_ENOUGH_MEMORY for a path of 260 characters.
oam_result AlertLogFileBeg(const char* path) noexcept;
// OAMERR_NOT_FOUND when none is open; OAMERR_FILE_WRITE_ERROR when closing failed (it is closed).
oam_result AlertLogFileEnd() noexcept;
