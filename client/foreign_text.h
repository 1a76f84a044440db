// Texts that are not ours - names, values, alert texts - made fit to be shown.
//
// A control character in such a text could move the cursor, change the colours or break a table's
// lines. Every one is shown as an escape ("\n", "\x1b", "\u202e"), a byte that is not UTF-8 as
// "\xNN", and a backslash as two, so that what is shown can be read in one way only.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace oam {

std::string Shown(std::string_view text);

// The columns that a shown text takes: one for each character.
size_t ShownWidth(std::string_view shown);

// Whether it is UTF-8 as a whole, and so what JSON can carry as a text.
bool IsUtf8(std::string_view text);

// True for the characters that Shown escapes as control characters below U+0080.
constexpr bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }

}  // namespace oam
