#include "mirror/base64.h"

#include <algorithm>

namespace oam::console {
namespace {

constexpr std::string_view kDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string ToBase64(std::string_view bytes) {
    std::string text;
    for (; !bytes.empty(); bytes.remove_prefix(std::min<std::size_t>(3, bytes.size()))) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size());
        unsigned group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8 | (i < count ? static_cast<unsigned char>(bytes[i]) : 0u);
        for (std::size_t i = 0; i < 4; ++i)
            text += i <= count ? kDigits[group >> (18 - 6 * i) & 63] : '=';
    }
    return text;
}

std::optional<std::string> FromBase64(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    std::string bytes;
    for (; !text.empty(); text.remove_prefix(4)) {
        std::size_t padding = 0;
        if (text.size() == 4)
            while (padding < 2 && text[3 - padding] == '=') ++padding;
        unsigned group = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            const auto digit = i < 4 - padding ? kDigits.find(text[i]) : 0;
            if (digit == kDigits.npos) return std::nullopt;
            group = group << 6 | static_cast<unsigned>(digit);
        }
        for (std::size_t i = 0; i < 3 - padding; ++i)
            bytes += static_cast<char>(group >> (16 - 8 * i) & 0xff);
    }
    return bytes;
}

}  // namespace oam::console
