// Texts: owned copies, the one rule for answering a text, and comparison without regard to case.
#pragma once

#include <string_view>

#include "oam/codes.h"

namespace oam {

constexpr unsigned kNameSize = 128;      // buffers for names and most keyword values, NUL included
constexpr unsigned kPathSize = 128;      // buffers for the paths of data files, logs and plug-ins
constexpr unsigned kScanPathSize = 260;  // buffers for paths while "/lib" is scanned

// A private heap copy of a text, or null. Copying is explicit, because it can fail.
class OwnedText {
  public:
    OwnedText() noexcept = default;
    OwnedText(OwnedText&& other) noexcept : text_(other.Release()) {}
    OwnedText& operator=(OwnedText&& other) noexcept;
    OwnedText(const OwnedText&) = delete;
    OwnedText& operator=(const OwnedText&) = delete;
    ~OwnedText() { delete[] text_; }

    // Frees the old text first. Null stays null and is no failure; false when there is no memory
    // (the text is then null).
    bool Assign(const char* text) noexcept;
    bool Assign(std::string_view text) noexcept;
    // Both texts, one after the other.
    bool Join(std::string_view first, std::string_view second) noexcept;

    const char* Get() const noexcept { return text_; }
    const char* OrEmpty() const noexcept { return text_ != nullptr ? text_ : ""; }
    bool IsNull() const noexcept { return text_ == nullptr; }

  private:
    char* Release() noexcept;

    char* text_ = nullptr;
};

// The only code that writes a caller's text buffer: a null buffer asks whether the value exists; a
// text whose length is not below `size` is OAMERR_NOT_ENOUGH_MEMORY and copies nothing. A null text
// is the empty text.
oam_result CopyText(const char* text, char* buffer, unsigned size) noexcept;

// As CopyText for a decimal number, which needs a buffer of 12 bytes whatever its length.
oam_result CopyNumber(int number, char* buffer, unsigned size) noexcept;

// Copies at most size - 1 characters and always terminates.
void CopyCut(const char* text, char* buffer, size_t size) noexcept;

bool EqualNoCase(const char* left, const char* right) noexcept;
bool StartsWithNoCase(const char* text, std::string_view start) noexcept;

// The last "." of a name and what follows, or an empty text.
const char* LastExtension(const char* name) noexcept;

}  // namespace oam
