#include "data_file_image.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "xmo_path.h"
#include "xmo_writer.h"
#include "zol/zol.h"

namespace {

constexpr std::string_view kDeclaration = "<?XML version=\"1.0\"?>\n";
constexpr std::string_view kRootIndent = "   ";
constexpr std::string_view kKeywordIndent = "      <";
constexpr std::string_view kKeywordEnd = "/>\n";
constexpr off_t kMostBytes = 1 << 24;
constexpr size_t kMostInToken = 2047;

bool isWhite(char character) noexcept {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

// What the reader takes as it stands: nothing to trim, no mark of another kind of tag.
inline bool isPlainTag(std::string_view tag) noexcept {
    if (tag.empty() || tag.size() > kMostInToken || isWhite(tag.back())) return false;
    const char first = tag.front();
    // Nearly every one; and of what lies below, white space and the marks.
    return first > '?' || (!isWhite(first) && first != '?' && first != '!' && first != '/');
}

// A backslash is a place in the reader's path.
bool hasBackslash(std::string_view text) noexcept {
    return memchr(text.data(), '\\', text.size()) != nullptr;
}

// Where two texts that a NUL ends first differ, found in words: names that follow each other have
// much in common. Of both sizes the smaller one when there is no such place.
size_t firstDifference(std::string_view one, std::string_view other) noexcept {
    const size_t shorter = std::min(one.size(), other.size());
    size_t same = 0;
    for (; same + sizeof(uint64_t) <= shorter; same += sizeof(uint64_t)) {
        uint64_t left;
        uint64_t right;
        memcpy(&left, one.data() + same, sizeof left);
        memcpy(&right, other.data() + same, sizeof right);
        if (left == right) continue;
        if constexpr (std::endian::native != std::endian::little) break;
        return same + static_cast<size_t>(std::countr_zero(left ^ right)) / 8;
    }
    while (same < shorter && one[same] == other[same]) ++same;
    return same;
}

bool isAscending(std::string_view before, std::string_view after) noexcept {
    const size_t same = firstDifference(before, after);
    const int difference = zolFold(before.data()[same]) - zolFold(after.data()[same]);
    if (difference != 0) return difference < 0;
    return zolStricmp(before.data() + same, after.data() + same) < 0;
}

bool isPlainValue(std::string_view value) noexcept {
    return value.empty() ||
           (value.size() <= kMostInToken && !isWhite(value.front()) && !isWhite(value.back()));
}

// What is still to be read of a text that ends with a NUL.
class Rest {
  public:
    Rest(char* at, char* end) noexcept : at_(at), end_(end) {}

    bool Skip(std::string_view expected) noexcept {
        if (!StartsWith(expected)) return false;
        at_ += expected.size();
        return true;
    }
    // What lies before the character, which is made a NUL and passed.
    bool Take(char character, std::string_view* text) noexcept {
        auto* found = static_cast<char*>(memchr(at_, character, Left()));
        if (found == nullptr) return false;
        *text = std::string_view(at_, static_cast<size_t>(found - at_));
        *found = '\0';
        at_ = found + 1;
        return true;
    }
    bool IsEmpty() const noexcept { return at_ == end_; }

  private:
    size_t Left() const noexcept { return static_cast<size_t>(end_ - at_); }
    bool StartsWith(std::string_view expected) const noexcept {
        return Left() >= expected.size() && memcmp(at_, expected.data(), expected.size()) == 0;
    }

    char* at_;
    char* const end_;
};

}  // namespace

DataFileImage::~DataFileImage() { Close(); }

void DataFileImage::Close() noexcept {
    if (descriptor_ >= 0) close(std::exchange(descriptor_, -1));
}

bool DataFileImage::Open(const char* path) noexcept {
    Close();
    descriptor_ = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor_ < 0) return false;
    if (fstat(descriptor_, &status_) == 0) return true;
    Close();
    return false;
}

bool DataFileImage::Read() noexcept {
    const bool isRead = ReadText();
    Close();
    return isRead && Split(keywords_.Text(), length_);
}

// A file that grows or shrinks meanwhile is nothing for this reader.
bool DataFileImage::ReadText() noexcept {
    if (descriptor_ < 0 || !S_ISREG(status_.st_mode) || status_.st_size > kMostBytes) return false;
    identity_ = oam::FileIdentity::Of(status_);
    length_ = static_cast<size_t>(status_.st_size);
    char* text = keywords_.MakeText(length_);
    if (text == nullptr) return false;
    // One more than there should be.
    if (read(descriptor_, text, length_ + 1) != status_.st_size) return false;
    text[length_] = '\0';
    return memchr(text, '\0', length_) == nullptr;
}

bool DataFileImage::Split(char* text, size_t length) noexcept {
    Rest rest(text, text + length);
    std::string_view root;
    std::string_view name;
    if (!rest.Skip(kDeclaration) || !rest.Skip("<") || !rest.Take('>', &root) ||
        root != kObjectRoot || !rest.Skip("\n") || !rest.Skip(kRootIndent) || !rest.Skip("<") ||
        !rest.Take('>', &name) || !isPlainTag(name) || !rest.Skip("\n")) {
        return false;
    }
    name_ = name.data();
    bool hasValue = false;
    std::string_view before;
    // Looked for once in all, since nearly no file has any.
    const bool mayHaveBackslash = hasBackslash({text, length});
    if (mayHaveBackslash && hasBackslash(name)) return false;
    while (rest.Skip(kKeywordIndent)) {
        std::string_view keyword;
        std::string_view value;
        if (!rest.Take('>', &keyword) || !isPlainTag(keyword) || !rest.Take('<', &value) ||
            !isPlainValue(value) || !rest.Skip(kKeywordEnd)) {
            return false;
        }
        // Both after a backslash, in the reader's path.
        if (name.size() + keyword.size() + 2 >= XmoPath::kSize) return false;
        if (mayHaveBackslash && hasBackslash(keyword)) return false;
        if (before.data() != nullptr && !isAscending(before, keyword)) return false;
        before = keyword;
        hasValue = hasValue || !value.empty();
        if (!keywords_.Add(keyword.data(), value.data())) return false;
    }
    std::string_view end;
    return hasValue && rest.Skip(kRootIndent) && rest.Skip("</") && rest.Take('>', &end) &&
           end == name && rest.Skip("\n</") && rest.Take('>', &end) && end == kObjectRoot &&
           rest.Skip("\n") && rest.IsEmpty();
}
