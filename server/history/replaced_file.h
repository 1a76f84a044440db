// Putting a file in its place so that it is wholly there or not at all, whenever the machine stops,
// and setting one aside.
//
// What goes wrong is a Failure with the system's reason.
#pragma once

#include <string>
#include <string_view>

namespace oam::server {

// A file that is written and on the disk under a name beside, until it is moved to its place.
class NewFile {
  public:
    // With the permissions and the owner of the file `like`, when that is a regular one.
    NewFile(const std::string& beside, std::string_view bytes, const std::string& like);
    // Removes it, unless it was moved.
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    // On the same file system; what lies there is replaced.
    void MoveTo(const std::string& path);

  private:
    const std::string beside_;
    bool wasMoved_ = false;
};

// Gives what lies at `path` the first free name of "<target>.spoiled-<n>" and answers that. Where
// the file system has links, `path` stays, as a second name, until it is replaced.
std::string SetSpoiledAside(const std::string& path, const std::string& target);

}  // namespace oam::server
