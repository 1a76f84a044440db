// CXmlImport reads data files and exports, one keyword at a time (the writer tells the format).
//
// Beyond what the writer writes it accepts: declarations "<!...>" and instructions "<?...>"
// anywhere, keywords closed by their name, any white space between tags. Invalid as a whole:
// unbalanced or unclosed tags, a wrong root, a text outside an element, a token over 2,047
// characters, a NUL byte, and a file in which no keyword has a value.
#pragma once

#include <cstdio>

#include "base/text.h"
#include "xmo_path.h"

// Whether a keyword's directory can be an object: a keyword directly in the root has an empty one,
// one nested deeper has a backslash. Neither could be written again.
bool isObjectName(const char* directory) noexcept;

class CXmlImport {
  public:
    enum eTokenType {
        kInstruction = 1,
        kDeclaration = 2,
        kBeginTag = 3,
        kEndTag = 4,
        kText = 5,
        kSyntaxError = 6,
        kReadError = 7,
        kEndOfFile = 8,
    };

    CXmlImport() noexcept = default;
    CXmlImport(const CXmlImport&) = delete;
    CXmlImport& operator=(const CXmlImport&) = delete;
    virtual ~CXmlImport();

    // 0, or -1 when the file cannot be opened. The root's name must stay good while reading.
    int Open(const char* path, const char* rootName) noexcept;
    // kText with Keyword, Value and Directory set; kEndOfFile after the last; else an error.
    eTokenType GetNextKeyword() noexcept;
    int Close() noexcept;

    const char* Keyword() const noexcept { return keyword_; }
    const char* Value() const noexcept { return token_; }
    // The enclosing directories, each after a backslash; for an object's keyword "\Board 1".
    const char* Directory() const noexcept { return path_.Text(); }
    // The directory without its first backslash: the name of the keyword's object.
    const char* ObjectName() const noexcept;

    // One token; its text is Value().
    eTokenType XmlGetToken() noexcept;

  private:
    static constexpr size_t kTokenSize = 2048;

    int NextVisible() noexcept;
    bool ReadUntil(int first, int terminator) noexcept;
    bool OpenTag() noexcept;
    // False on an error; *empty tells whether a keyword without a value has just ended.
    bool CloseTag(bool* empty) noexcept;

    FILE* stream_ = nullptr;
    const char* root_ = "";
    char token_[kTokenSize] = "";
    size_t tokenLength_ = 0;
    int depth_ = 0;
    XmoPath path_;
    const char* keyword_ = "";
    bool keywordSeen_ = false;
    eTokenType previous_ = kSyntaxError;
};
