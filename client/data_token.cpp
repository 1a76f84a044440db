#include "data_token.h"

namespace oam {
namespace {

Token mistake(Position at, const char* text) { return {TokenKind::kError, at, text}; }

}  // namespace

bool IsWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

Token TokenReader::Next() {
    SkipWhiteSpace();
    const Position at = at_;
    if (AtEnd()) return {TokenKind::kEndOfFile, at, {}};
    TokenKind kind = TokenKind::kText;
    if (content_[next_] == '<') {
        Skip();
        SkipWhiteSpace();
        if (AtEnd()) return mistake(at, "the file ends inside a tag");
        kind = ReadMarker();
    }
    const char terminator = kind == TokenKind::kText ? '<' : '>';
    Token token{kind, at, {}};
    for (; !AtEnd() && content_[next_] != terminator; Skip()) {
        if (content_[next_] == '\0') return mistake(at_, "a zero byte");
        if (token.text.size() == kTokenSize - 1)
            return mistake(at, "a tag or text longer than 2047 bytes");
        token.text += content_[next_];
    }
    if (AtEnd())
        return mistake(at, kind == TokenKind::kText ? "the file ends inside a text"
                                                    : "the file ends inside a tag");
    if (terminator == '>') Skip();
    while (!token.text.empty() && IsWhiteSpace(token.text.back())) token.text.pop_back();
    if (token.text.empty() && kind != TokenKind::kEnd) return mistake(at, "an empty tag");
    return token;
}

void TokenReader::Skip() {
    at_ = content_[next_] == '\n' ? Position{at_.line + 1, 1} : Position{at_.line, at_.column + 1};
    ++next_;
}

void TokenReader::SkipWhiteSpace() {
    while (!AtEnd() && IsWhiteSpace(content_[next_])) Skip();
}

// The slash of an end tag is no part of the token, the other marks are.
TokenKind TokenReader::ReadMarker() {
    switch (content_[next_]) {
        case '?':
            return TokenKind::kInstruction;
        case '!':
            return TokenKind::kComment;
        case '/':
            Skip();
            return TokenKind::kEnd;
        default:
            return TokenKind::kBegin;
    }
}

}  // namespace oam
