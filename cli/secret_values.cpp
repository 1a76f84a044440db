#include "secret_values.h"

#include <algorithm>

namespace oam {
namespace {

constexpr std::string_view kWords[] = {"passw",      "passphrase", "pwd",     "secret", "token",
                                       "credential", "community",  "private", "key",    "pin"};

// A keyword about keywords, not about keys; a board's pins are none either.
constexpr std::string_view kHarmless[] = {"keyword", "keypad",  "pinout",
                                          "ping",    "mapping", "monkey"};

std::string lower(std::string_view text) {
    std::string lowered(text);
    std::transform(lowered.begin(), lowered.end(), lowered.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lowered;
}

}  // namespace

bool IsSecretName(std::string_view keyword) {
    std::string name = lower(keyword);
    for (const std::string_view harmless : kHarmless)
        for (size_t at; (at = name.find(harmless)) != name.npos;)
            name.replace(at, harmless.size(), " ");
    return std::any_of(std::begin(kWords), std::end(kWords),
                       [&](std::string_view word) { return name.find(word) != name.npos; });
}

std::string WithoutSecrets(std::string_view content) {
    std::string clean;
    size_t at = 0;
    while (at < content.size()) {
        const size_t open = content.find('<', at);
        const size_t close = content.find('>', open);
        if (close == content.npos) break;
        clean.append(content.substr(at, close + 1 - at));
        at = close + 1;
        const std::string_view tag = content.substr(open + 1, close - open - 1);
        if (tag.starts_with('/') || !IsSecretName(tag)) continue;
        const size_t end = std::min(content.find('<', at), content.size());
        const std::string_view value = content.substr(at, end - at);
        if (value.find_first_not_of(" \t\r\n") == value.npos) continue;
        clean += "(removed)";
        at = end;
    }
    return clean.append(content.substr(std::min(at, content.size())));
}

}  // namespace oam
