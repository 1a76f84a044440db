// A command line as a shell has it while it is typed: its words so far, and the one at its end.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace oam {

struct ShellWords {
    std::vector<std::string> before;  // without their quotes
    std::string last;                 // the word at the end, without quotes; empty behind a blank
    char quote = 0;                   // the quote that is open at the end: ' or ", or 0
    // How much of `last` the shell keeps and does not replace: up to its last unquoted = or :.
    size_t kept = 0;
};

// Nothing is expanded; what stands before a pipe or a semicolon belongs to another command.
ShellWords ReadShellWords(std::string_view line);

// The text as it continues a word in which `quote` is open.
std::string ShellQuoted(const std::string& text, char quote);

}  // namespace oam
