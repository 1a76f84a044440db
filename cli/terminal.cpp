#include "terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

namespace oam {

size_t TerminalWidth(int descriptor) {
    winsize size{};
    if (!isatty(descriptor) || ioctl(descriptor, TIOCGWINSZ, &size) != 0) return 0;
    return size.ws_col;
}

bool TakesColour(int descriptor) {
    const char* const refused = std::getenv("NO_COLOR");
    const char* const kind = std::getenv("TERM");
    return isatty(descriptor) && (!refused || *refused == '\0') && kind &&
           std::string_view(kind) != "dumb";
}

std::string Painted(std::string_view text, Look look, int descriptor) {
    if (!TakesColour(descriptor)) return std::string(text);
    const char* const begin = look == Look::kHeading ? "\x1b[1m" : "\x1b[1;31m";
    return begin + std::string(text) + "\x1b[0m";
}

}  // namespace oam
