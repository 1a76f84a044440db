// The path of open directories that writer and reader keep: each name after a backslash, in 256
// bytes. The last component is what follows the last backslash.
#pragma once

#include <cstring>
#include <string_view>

class XmoPath {
  public:
    static constexpr size_t kSize = 256;

    // Empty, or a path of one backslash.
    XmoPath() noexcept = default;
    static XmoPath Root() noexcept {
        XmoPath path;
        path.text_[path.length_++] = '\\';
        return path;
    }

    // False, and nothing changed, when the name does not fit.
    bool Append(std::string_view name) noexcept {
        if (length_ + 1 + name.size() >= kSize) return false;
        text_[length_] = '\\';
        name.copy(text_ + length_ + 1, name.size());
        length_ += 1 + name.size();
        text_[length_] = '\0';
        return true;
    }

    // Cuts the last component off and returns it; it stays readable until the next Append. Null
    // when there is none.
    const char* CutLast() noexcept {
        char* backslash = strrchr(text_, '\\');
        if (backslash == nullptr) return nullptr;
        *backslash = '\0';
        length_ = static_cast<size_t>(backslash - text_);
        return backslash + 1;
    }

    // Undoes the last CutLast.
    void PutBack() noexcept {
        text_[length_] = '\\';
        length_ += strlen(text_ + length_);
    }

    const char* Text() const noexcept { return text_; }

  private:
    char text_[kSize] = "";
    size_t length_ = 0;
};
