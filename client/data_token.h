// The tokens of a data file or an export.
//
//   instruction  "<?" ... ">"      skipped by the reader
//   comment      "<!" ... ">"      skipped by the reader
//   begin tag    "<" name ">"      white space after "<" and before ">" does not count
//   end tag      "</" name ">"     white space before ">" does not count; the name may be empty
//   text         up to the next "<", which is not part of it; white space around it does not count
//
// A token holds at most kTokenSize - 1 bytes, counted before white space at its end is taken off.
// Nothing is escaped.
#pragma once

#include <string>
#include <string_view>

namespace oam {

constexpr size_t kTokenSize = 2048;

struct Position {
    size_t line = 0;    // from 1; 0: the file as a whole
    size_t column = 0;  // in bytes, from 1
};

enum class TokenKind { kInstruction, kComment, kBegin, kEnd, kText, kError, kEndOfFile };

struct Token {
    TokenKind kind;
    Position at;
    std::string text;  // of kError: what is wrong
};

class TokenReader {
  public:
    explicit TokenReader(std::string_view content) : content_(content) {}

    Token Next();

  private:
    bool AtEnd() const { return next_ == content_.size(); }
    void Skip();
    void SkipWhiteSpace();
    TokenKind ReadMarker();

    std::string_view content_;
    size_t next_ = 0;
    Position at_{1, 1};
};

bool IsWhiteSpace(char c);

}  // namespace oam
