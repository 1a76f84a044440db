#include "progress.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace oam {
namespace {

// A dumb terminal cannot take a line back.
bool isLookedAt() {
    const char* const kind = std::getenv("TERM");
    return isatty(STDERR_FILENO) && kind && std::string_view(kind) != "dumb";
}

}  // namespace

Progress::Progress(const char* verb, size_t all)
    : verb_(verb), all_(all), isShown_(all > 1 && isLookedAt()) {}

Progress::~Progress() { Clear(); }

void Progress::Show(size_t done) {
    if (isShown_) std::fprintf(stderr, "\r\x1b[K%s: %zu of %zu boards", verb_, done, all_);
}

void Progress::Clear() {
    if (isShown_) std::fputs("\r\x1b[K", stderr);
}

}  // namespace oam
