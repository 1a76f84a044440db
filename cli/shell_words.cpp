#include "shell_words.h"

namespace oam {
namespace {

constexpr std::string_view kBlanks = " \t\n";
constexpr std::string_view kEnds = ";|&(";
// What bash breaks words at for completion, besides blanks, quotes and the ends of commands.
constexpr std::string_view kBreaks = "=:";

bool isOneOf(std::string_view set, char c) { return set.find(c) != set.npos; }

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           isOneOf("_./:=+,@%^-", c) || static_cast<unsigned char>(c) >= 0x80;
}

}  // namespace

ShellWords ReadShellWords(std::string_view line) {
    ShellWords words;
    bool isInWord = false;
    const auto end = [&] {
        if (isInWord) words.before.push_back(words.last);
        words.last.clear();
        words.kept = 0;
        isInWord = false;
    };
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        const bool isEscape = c == '\\' && words.quote != '\'' && i + 1 < line.size() &&
                              (words.quote == 0 || isOneOf("\"\\$`", line[i + 1]));
        if (isEscape) {
            words.last += line[++i];
        } else if (words.quote != 0) {
            if (c == words.quote)
                words.quote = 0;
            else
                words.last += c;
        } else if (isOneOf(kBlanks, c)) {
            end();
            continue;
        } else if (isOneOf(kEnds, c)) {
            end();
            words.before.clear();
            continue;
        } else if (c == '"' || c == '\'') {
            words.quote = c;
        } else {
            words.last += c;
            if (isOneOf(kBreaks, c)) words.kept = words.last.size();
        }
        isInWord = true;
    }
    return words;
}

std::string ShellQuoted(const std::string& text, char quote) {
    std::string quoted;
    for (const char c : text) {
        if (quote == '\'' && c == '\'') {
            quoted += "'\\''";
            continue;
        }
        if (quote == '"' ? isOneOf("\"\\$`", c) : quote == 0 && !isPlain(c)) quoted += '\\';
        quoted += c;
    }
    return quoted;
}

}  // namespace oam
