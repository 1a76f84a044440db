#include "foreign_text.h"

#include <cstdint>
#include <cstdio>

namespace oam {
namespace {

struct CodePoint {
    uint32_t value;
    size_t bytes;  // 0: not UTF-8
};

// Overlong forms, surrogates and values above U+10FFFF are not UTF-8.
CodePoint decode(std::string_view text) {
    constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x80) return {first, 1};
    const size_t bytes = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : first >= 0xc0 ? 2 : 0;
    if (bytes == 0 || first >= 0xf8 || text.size() < bytes) return {first, 0};
    uint32_t value = first & (0xffu >> (bytes + 1));
    for (size_t i = 1; i < bytes; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xc0) != 0x80) return {first, 0};
        value = value << 6 | (next & 0x3f);
    }
    if (value < kSmallest[bytes] || value > 0x10ffff || (value >= 0xd800 && value < 0xe000))
        return {first, 0};
    return {value, bytes};
}

// Characters that steer a terminal or turn the reading direction around.
bool steers(uint32_t value) {
    return value < 0x20 || (value >= 0x7f && value < 0xa0) || value == 0x200e || value == 0x200f ||
           (value >= 0x2028 && value <= 0x202e) || (value >= 0x2066 && value <= 0x2069);
}

std::string escaped(uint32_t value) {
    switch (value) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            break;
    }
    char text[16];
    std::snprintf(text, sizeof text, value < 0x80 ? "\\x%02x" : "\\u%04x", value);
    return text;
}

}  // namespace

std::string Shown(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const CodePoint point = decode(text);
        char byte[8];
        if (point.bytes == 0) {
            std::snprintf(byte, sizeof byte, "\\x%02x", point.value);
            shown += byte;
        } else if (point.value == '\\') {
            shown += "\\\\";
        } else if (steers(point.value)) {
            shown += escaped(point.value);
        } else {
            shown += text.substr(0, point.bytes);
        }
        text.remove_prefix(point.bytes ? point.bytes : 1);
    }
    return shown;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const CodePoint point = decode(text);
        if (point.bytes == 0) return false;
        text.remove_prefix(point.bytes);
    }
    return true;
}

size_t ShownWidth(std::string_view shown) {
    size_t width = 0;
    for (const char c : shown) width += (static_cast<unsigned char>(c) & 0xc0) != 0x80;
    return width;
}

}  // namespace oam
