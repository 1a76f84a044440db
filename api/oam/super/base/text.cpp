#include "base/text.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

#include "zol/zol.h"

namespace oam {

OwnedText& OwnedText::operator=(OwnedText&& other) noexcept {
    if (this != &other) {
        delete[] text_;
        text_ = other.Release();
    }
    return *this;
}

bool OwnedText::Assign(const char* text) noexcept {
    if (text != nullptr) return Assign(std::string_view(text));
    delete[] Release();
    return true;
}

bool OwnedText::Assign(std::string_view text) noexcept { return Join(text, {}); }

bool OwnedText::Join(std::string_view first, std::string_view second) noexcept {
    delete[] Release();
    text_ = new (std::nothrow) char[first.size() + second.size() + 1];
    if (text_ == nullptr) return false;
    if (!first.empty()) memcpy(text_, first.data(), first.size());
    if (!second.empty()) memcpy(text_ + first.size(), second.data(), second.size());
    text_[first.size() + second.size()] = '\0';
    return true;
}

char* OwnedText::Release() noexcept { return std::exchange(text_, nullptr); }

oam_result CopyText(const char* text, char* buffer, unsigned size) noexcept {
    if (buffer == nullptr) return OAM_SUCCESS;
    const std::string_view source = text != nullptr ? text : "";
    if (source.size() >= size) return OAMERR_NOT_ENOUGH_MEMORY;
    memcpy(buffer, source.data(), source.size());
    buffer[source.size()] = '\0';
    return OAM_SUCCESS;
}

oam_result CopyNumber(int number, char* buffer, unsigned size) noexcept {
    char text[12];
    if (buffer != nullptr && size < sizeof text) return OAMERR_NOT_ENOUGH_MEMORY;
    snprintf(text, sizeof text, "%d", number);
    return CopyText(text, buffer, size);
}

void CopyCut(const char* text, char* buffer, size_t size) noexcept {
    const size_t length = text != nullptr ? strnlen(text, size - 1) : 0;
    if (length != 0) memcpy(buffer, text, length);
    buffer[length] = '\0';
}

bool EqualNoCase(const char* left, const char* right) noexcept {
    return zolStricmp(left, right) == 0;
}

bool StartsWithNoCase(const char* text, std::string_view start) noexcept {
    return zolStrnicmp(text, start.data(), start.size()) == 0;
}

const char* LastExtension(const char* name) noexcept {
    const char* dot = strrchr(name, '.');
    return dot != nullptr ? dot : "";
}

}  // namespace oam
