#include "shown.h"

#include <cstdio>

namespace oam::check {
namespace {

constexpr std::size_t kLongestQuote = 60;

struct CodeRow {
    unsigned int code;
    const char* name;
};

constexpr CodeRow kCodes[] = {
    {0, "success"},
#define OAM_CODE(name, value) {value, #name},
#include "oam/codes.def"
#undef OAM_CODE
};

const char* serviceName(unsigned int code) {
    for (const CodeRow& row : kCodes)
        if (row.code == code) return row.name;
    return nullptr;
}

void appendShown(std::string* shown, char letter) {
    const auto byte = static_cast<unsigned char>(letter);
    if (byte >= ' ' && byte != 0x7F && letter != '"' && letter != '\\') {
        *shown += letter;
        return;
    }
    char escaped[8];
    std::snprintf(escaped, sizeof escaped, "\\x%02x", byte);
    *shown += escaped;
}

}  // namespace

std::string Quoted(std::string_view text) {
    std::string shown = "\"";
    for (const char letter : text.substr(0, kLongestQuote)) appendShown(&shown, letter);
    shown += '"';
    if (text.size() > kLongestQuote)
        shown += " and " + std::to_string(text.size() - kLongestQuote) + " bytes more";
    return shown;
}

std::string QuotedOrNull(const char* text) { return text != nullptr ? Quoted(text) : "null"; }

std::string CodeText(unsigned int code) {
    const char* name = serviceName(code);
    return name != nullptr ? name : HexText(code);
}

bool IsServiceCode(unsigned int code) { return serviceName(code) != nullptr; }

std::string HexText(unsigned long long number) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%llx", number);
    return text;
}

}  // namespace oam::check
