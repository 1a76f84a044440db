#include "fleet/names.h"

#include <array>

namespace oam::fleet {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::string_view kEmpty = "=";
constexpr std::string_view kCommand = "oam.command.";

constexpr bool isPlain(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_';
}

}  // namespace

std::string TokenOf(std::string_view name) {
    if (name.empty()) return std::string(kEmpty);
    std::string token;
    for (const char c : name) {
        if (isPlain(c)) {
            token += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        token += {'=', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return token;
}

std::optional<std::string> NameOf(std::string_view token) {
    if (token == kEmpty) return std::string();
    if (token.empty()) return std::nullopt;
    std::string name;
    for (std::size_t i = 0; i < token.size(); ++i) {
        if (isPlain(token[i])) {
            name += token[i];
            continue;
        }
        if (token[i] != '=' || i + 2 >= token.size()) return std::nullopt;
        const auto high = kDigits.find(token[i + 1]);
        const auto low = kDigits.find(token[i + 2]);
        if (high == kDigits.npos || low == kDigits.npos) return std::nullopt;
        const auto byte = static_cast<char>(high << 4 | low);
        // Two tokens of one name would be two hosts.
        if (isPlain(byte)) return std::nullopt;
        name += byte;
        i += 2;
    }
    return name;
}

std::string BucketStream(std::string_view bucket) { return "KV_" + std::string(bucket); }

std::string BucketSubject(std::string_view bucket, std::string_view key) {
    return "$KV." + std::string(bucket) + '.' + std::string(key);
}

std::string AlertSubject(std::string_view host) { return "oam.alerts." + TokenOf(host); }

std::string AlertId(std::string_view host, std::uint64_t series, std::uint64_t sequence) {
    const std::string id = TokenOf(host) + '+' + std::to_string(sequence);
    return series == 0 ? id : id + '+' + std::to_string(series);
}

std::string CommandSubject(std::string_view host, std::string_view role, std::string_view caller,
                           std::string_view verb) {
    return std::string(kCommand) + TokenOf(host) + '.' + std::string(role) + '.' + TokenOf(caller) +
           '.' + std::string(verb);
}

std::string CommandSubjects(std::string_view host) {
    return std::string(kCommand) + TokenOf(host) + ".*.*.*";
}

std::optional<CommandName> ParseCommandSubject(std::string_view subject) {
    if (!subject.starts_with(kCommand)) return std::nullopt;
    subject.remove_prefix(kCommand.size());
    std::array<std::string_view, 4> parts;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto dot = subject.find('.');
        if ((dot == subject.npos) != (i + 1 == parts.size())) return std::nullopt;
        parts.at(i) = subject.substr(0, dot);
        subject.remove_prefix(dot == subject.npos ? subject.size() : dot + 1);
    }
    auto host = NameOf(parts[0]);
    auto caller = NameOf(parts[2]);
    if (!host || !caller || parts[1].empty() || parts[3].empty()) return std::nullopt;
    return CommandName{*std::move(host), std::string(parts[1]), *std::move(caller),
                       std::string(parts[3])};
}

std::string InboxPrefix(std::string_view name) { return "_INBOX." + TokenOf(name); }

}  // namespace oam::fleet
