// A file of a moment beside the installation's own, gone with this object.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace oam::server {

class ScratchFile {
  public:
    // In "<directory>/oam"; std::system_error when it cannot be made.
    explicit ScratchFile(const std::string& directory);
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    // Of a daemon that was killed. Nobody else may have one at the time.
    static void RemoveLeftOver(const std::string& directory);

    const std::string& Path() const { return path_; }

    // At the end; std::system_error when it cannot be written.
    void Append(std::string_view bytes);
    std::size_t Size() const { return size_; }
    // From the beginning on with each call; empty at the end. Also what another has written to the
    // path, or put in its place.
    std::string Read(std::size_t most);

  private:
    std::string path_;
    int descriptor_;
    std::size_t size_ = 0;
    std::size_t read_ = 0;
};

}  // namespace oam::server
