// Puts data files back that a loss of power, a failing disk or a hand has spoiled, before the
// service drops them.
//
// A data file that holds no object is put back from the object's last good version, and is kept
// beside as "<name>.spoiled-<n>". One that is missing is put back too, unless somebody may have
// deleted its object without the history. Nothing is deleted. What cannot be done is said like what
// was done.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "history/change_finder.h"

namespace oam::server {

struct SpoilReport {
    std::vector<std::string> sentences;
    std::vector<std::string> restored;  // objects
    std::vector<std::string> lost;      // objects that should be there and are not
};

class SpoiledFiles {
  public:
    // `directory`: the data files, also when it is that of an import under way; what lies aside
    // goes into `configuration`, the configuration directory.
    SpoiledFiles(const ChangeFinder& files, const KnownObjects& known, std::string directory,
                 std::string configuration);

    // `bytesOf` reads an object's last version. `mayBeDeleted(object)`: whether somebody may have
    // deleted an object whose file is missing; without it, missing files are not looked for.
    using MayBeDeleted = std::function<bool(const KnownObject& object)>;
    SpoilReport PutBack(const ChangeFinder::BytesOf& bytesOf, const MayBeDeleted& mayBeDeleted);

  private:
    const KnownObject* OwnerOf(const std::string& file) const;
    void PutBackSpoiled(const FoundFile& file, const ChangeFinder::BytesOf& bytesOf);
    void PutBackMissing(const KnownObject& object, const ChangeFinder::BytesOf& bytesOf);

    const ChangeFinder& files_;
    const KnownObjects& known_;
    const std::string directory_;
    const std::string configuration_;
    SpoilReport report_;
};

}  // namespace oam::server
