// What the bytes of a shadow segment mean, read once more from oam/shadow.h alone.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace oam::fuzz {

constexpr std::size_t kSegmentSize = 10624;

class ShadowModel {
  public:
    // kSegmentSize bytes.
    explicit ShadowModel(const std::vector<unsigned char>& bytes) : bytes_(bytes) {
        std::memcpy(&count_, bytes_.data(), sizeof count_);
    }

    bool IsShadow() const { return count_ >= 0 && count_ <= kMostRecords; }

    // All of these only of a shadow, and of an index below the count.
    int Count() const { return count_; }
    std::string Name(int index) const { return Text(index, 0, 128); }
    std::string DriverName(int index) const { return Text(index, 136, 128); }
    std::string DriverBoardId(int index) const { return Text(index, 265, 64); }
    bool IsALaw(int index) const { return bytes_[At(index) + 330] != 0; }
    bool IsUsingVxPlugin() const { return bytes_[At(count_)] != 0; }
    unsigned Number(int index) const {
        unsigned number;
        std::memcpy(&number, &bytes_[At(index) + 132], sizeof number);
        return number;
    }

    template <class Fits>
    bool HasOneThat(Fits fits) const {
        for (int i = 0; i < count_; ++i) {
            if (fits(i)) return true;
        }
        return false;
    }

  private:
    static constexpr std::size_t kRecordSize = 332;
    static constexpr int kMostRecords = 31;

    static std::size_t At(int index) { return 4 + static_cast<std::size_t>(index) * kRecordSize; }
    // A text that another process has left without a NUL ends where its field does.
    std::string Text(int index, std::size_t offset, std::size_t most) const {
        const auto* text = reinterpret_cast<const char*>(&bytes_[At(index) + offset]);
        return {text, strnlen(text, most)};
    }

    const std::vector<unsigned char>& bytes_;
    int count_ = 0;
};

}  // namespace oam::fuzz
