// The other process: whatever it writes into the shadow's two files, the segment and the journal.
//
// The readers' mappings of the two end inside of a page. Under the address sanitizer the rest of
// that page is poisoned, so that reading it is seen as well.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace oam::fuzz {

class SharedFile {
  public:
    // The readers have it open already, and use `size` bytes of it.
    SharedFile(const std::string& path, std::size_t size);
    ~SharedFile();
    SharedFile(const SharedFile&) = delete;
    SharedFile& operator=(const SharedFile&) = delete;

    void Put(const void* bytes, std::size_t size) const;
    std::vector<unsigned char> Contents() const;
    // What is new is zero.
    void Resize(std::size_t size) const;

  private:
    void GuardWhatFollows(const std::string& path) const;

    int descriptor_;
    std::size_t size_;
};

class ShadowWriter {
  public:
    explicit ShadowWriter(const std::string& directory);

    const SharedFile& Segment() const { return segment_; }
    // At most as long as the journal.
    void PutJournal(const void* bytes, std::size_t size) const;
    void EmptyJournal() const;
    // What a writer leaves that dies when its image is whole but not copied yet.
    void LeaveImage(const std::vector<unsigned char>& image) const;
    // The image that the journal holds now; nothing when it is not whole.
    std::optional<std::vector<unsigned char>> ImageLeft() const;

  private:
    SharedFile segment_;
    SharedFile journal_;
};

}  // namespace oam::fuzz
