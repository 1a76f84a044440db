#include "doors/frame_door.h"

#include <cstdarg>
#include <cstdio>

#include "base/flags.h"
#include "doors/doors.h"

bool g_bOamIsRunning = false;

namespace oam::test {

FrameDoor& FrameDoor::The() {
    static FrameDoor door;
    return door;
}

void FrameDoor::Reset() {
    texts.clear();
    SetOamIsRunning(false);
    for (auto* setting : {&g_bAutoStartEnabled, &g_bAutoStopEnabled, &g_bSynchronizeEnabled,
                          &g_bOammonLog}) {
        *setting = false;
    }
}

}  // namespace oam::test

void DebugOutput(const char* format, ...) noexcept {
    char text[2048];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    oam::test::Doors::The().NoteDebug(text);
}

const char* _oamGetText(unsigned code) noexcept {
    const auto& texts = oam::test::FrameDoor::The().texts;
    const auto found = texts.find(code);
    return found != texts.end() ? found->second : nullptr;
}
