#include "xmo_reader.h"

#include <cstring>
#include <utility>

namespace {

// Exactly these six, whatever the locale says.
bool isWhite(int character) noexcept {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

}  // namespace

bool isObjectName(const char* directory) noexcept {
    return *directory != '\0' && strchr(directory, '\\') == nullptr;
}

CXmlImport::~CXmlImport() { (void)Close(); }

int CXmlImport::Open(const char* path, const char* rootName) noexcept {
    stream_ = fopen(path, "re");
    if (stream_ == nullptr) return -1;
    root_ = rootName;
    path_ = XmoPath();
    depth_ = 0;
    keywordSeen_ = false;
    previous_ = kSyntaxError;
    return 0;
}

int CXmlImport::Close() noexcept {
    if (stream_ == nullptr) return 0;
    return fclose(std::exchange(stream_, nullptr)) == 0 ? 0 : -1;
}

const char* CXmlImport::ObjectName() const noexcept {
    const char* directory = path_.Text();
    return *directory == '\\' ? directory + 1 : directory;
}

int CXmlImport::NextVisible() noexcept {
    int character;
    do {
        character = getc_unlocked(stream_);
    } while (isWhite(character));
    return character;
}

// Reads the token's text from its first character up to the terminator, which is consumed.
bool CXmlImport::ReadUntil(int first, int terminator) noexcept {
    tokenLength_ = 0;
    for (int character = first; character != terminator; character = getc_unlocked(stream_)) {
        if (character == EOF || character == '\0' || tokenLength_ == kTokenSize - 1) return false;
        token_[tokenLength_++] = static_cast<char>(character);
    }
    while (tokenLength_ > 0 && isWhite(token_[tokenLength_ - 1])) --tokenLength_;
    token_[tokenLength_] = '\0';
    return true;
}

CXmlImport::eTokenType CXmlImport::XmlGetToken() noexcept {
    int character = NextVisible();
    if (character == EOF) return ferror(stream_) != 0 ? kReadError : kEndOfFile;
    eTokenType kind = kText;
    if (character == '<') {
        character = NextVisible();
        kind = character == '!'   ? kDeclaration
               : character == '?' ? kInstruction
               : character == '/' ? kEndTag
                                  : kBeginTag;
        if (kind == kEndTag) character = getc_unlocked(stream_);
    }
    const int terminator = kind == kText ? '<' : '>';
    if (!ReadUntil(character, terminator)) return ferror(stream_) != 0 ? kReadError : kSyntaxError;
    if (tokenLength_ == 0 && kind != kEndTag) return kSyntaxError;
    if (kind == kText) ungetc(terminator, stream_);
    return ferror(stream_) != 0 ? kReadError : kind;
}

CXmlImport::eTokenType CXmlImport::GetNextKeyword() noexcept {
    if (previous_ == kText) path_.PutBack();
    for (;;) {
        const eTokenType kind = XmlGetToken();
        bool valid = true;
        bool empty = false;
        switch (kind) {
            case kInstruction:
            case kDeclaration:
                break;
            case kBeginTag:
                valid = OpenTag();
                break;
            case kEndTag:
                valid = CloseTag(&empty);
                break;
            case kText:
                keyword_ = path_.CutLast();
                valid = keyword_ != nullptr;
                keywordSeen_ = true;
                break;
            case kEndOfFile:
                // Kept: a keyword with an empty value does not count as seen.
                valid = keywordSeen_ && depth_ == 0;
                break;
            case kSyntaxError:
                valid = false;
                break;
            case kReadError:
                break;
        }
        previous_ = valid ? kind : kSyntaxError;
        if (!valid) return kSyntaxError;
        if (empty) return kText;
        if (kind == kText || kind == kReadError || kind == kEndOfFile) return kind;
    }
}

bool CXmlImport::OpenTag() noexcept {
    if (depth_ == 0 ? strcmp(token_, root_) != 0 : !path_.Append(token_)) return false;
    ++depth_;
    return true;
}

bool CXmlImport::CloseTag(bool* empty) noexcept {
    if (depth_ < 1) return false;
    --depth_;
    if (depth_ == 0) return strcmp(token_, root_) == 0;
    const char* last = path_.CutLast();
    if (last == nullptr || (tokenLength_ != 0 && strcmp(token_, last) != 0)) return false;
    if (previous_ == kBeginTag) {
        keyword_ = last;
        token_[0] = '\0';
        *empty = true;
    }
    return true;
}
