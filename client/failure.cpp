#include "failure.h"

#include <cstdio>
#include <map>

#include "foreign_text.h"
#include "oam/entry.h"

namespace oam {
namespace {

std::map<unsigned, std::string>& learnedNames() {
    static thread_local std::map<unsigned, std::string> names;
    return names;
}

}  // namespace

Failure::Failure(const std::string& what, std::string advice, ExitStatus status)
    : std::runtime_error(what), advice_(std::move(advice)), status_(status) {}

Failure::Failure(unsigned code, const std::string& what, std::string advice)
    : std::runtime_error(what + ": " + CodeText(code)),
      advice_(std::move(advice)),
      code_(code),
      status_(StatusOf(code)) {}

Failure::Failure(unsigned code, ExitStatus status, const std::string& whole, std::string advice)
    : std::runtime_error(whole), advice_(std::move(advice)), code_(code), status_(status) {}

ExitStatus StatusOf(unsigned code) {
    switch (code) {
        case OAMERR_NOT_FOUND:
            return kNotFound;
        case OAMERR_ACCESS_DENIED:
        case OAMERR_SET_BOARD_KEYWORD_FAIL:
            return kBusy;
        default:
            return kFailed;
    }
}

void NameCode(unsigned code, const std::string& name) { learnedNames()[code] = name; }

std::string CodeText(unsigned code) {
    const auto learned = learnedNames().find(code);
    const char* name =
        learned != learnedNames().end() ? learned->second.c_str() : _oamGetText(code);
    return name ? Shown(name) + " (" + HexText(code) + ")" : HexText(code);
}

std::string HexText(unsigned code) {
    char text[11];
    std::snprintf(text, sizeof text, "0x%08x", code);
    return text;
}

std::string Quoted(const std::string& text) { return '"' + Shown(text) + '"'; }

}  // namespace oam
