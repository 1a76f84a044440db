// Stand-in for doors/alert.h. An alert is noted with its code's name and its formatted text.
#include "doors/alert.h"

#include <cstdarg>
#include <cstdio>

#include "doors/doors.h"

using oam::test::Doors;

oam_result AlertNotify(unsigned code, unsigned severity, const char* source, const char* format,
                       ...) noexcept {
    char text[2048];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return Doors::The().Call("AlertNotify", oam::test::CodeName(code).c_str(), severity, source,
                             static_cast<const char*>(text));
}

oam_result AlertInit() noexcept { return Doors::The().Call("AlertInit"); }

void AlertExit() noexcept { (void)Doors::The().Call("AlertExit"); }

oam_result AlertLogFileBeg(const char* path) noexcept {
    return Doors::The().Call("AlertLogFileBeg", path);
}

oam_result AlertLogFileEnd() noexcept { return Doors::The().Call("AlertLogFileEnd"); }
