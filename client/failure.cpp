#include "failure.h"

#include <cstdio>

#include "foreign_text.h"
#include "oam/entry.h"

namespace oam {

Failure::Failure(const std::string& what, std::string advice)
    : std::runtime_error(what), advice_(std::move(advice)) {}

Failure::Failure(unsigned code, const std::string& what, std::string advice)
    : std::runtime_error(what + ": " + CodeText(code)), advice_(std::move(advice)) {}

std::string CodeText(unsigned code) {
    const char* name = _oamGetText(code);
    return name ? Shown(name) + " (" + HexText(code) + ")" : HexText(code);
}

std::string HexText(unsigned code) {
    char text[11];
    std::snprintf(text, sizeof text, "0x%08x", code);
    return text;
}

std::string Quoted(const std::string& text) { return '"' + Shown(text) + '"'; }

}  // namespace oam
