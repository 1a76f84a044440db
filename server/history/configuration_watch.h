// Finds which data files of a configuration directory have changed since the last look.
//
// The service replaces a data file by another one of its name, so an unchanged directory holds
// unchanged files: that costs one look at the directory. Otherwise each file is looked at, and the
// changed ones are read. Files that are written in place (links) are looked at each time.
//
// What the service is in the middle of is not looked at: while "import-aside" lies in the
// directory, the files in it are neither the old configuration nor the new one.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "history/file_identity.h"
#include "history/found_file.h"

namespace oam::server {

// Where the old data files are while an import is under way, under the configuration directory.
constexpr const char* kImportAside = "/import-aside";

class ConfigurationWatch {
  public:
    explicit ConfigurationWatch(std::string directory);

    struct News {
        std::vector<FoundFile> found;   // new or changed, or perhaps changed
        std::vector<std::string> gone;  // names
    };
    // The first look finds everything. Nothing while an import is under way. A directory that
    // cannot be read is a Failure.
    std::optional<News> Look();

    // The next look looks at each file, also when the directory is unchanged: a file may have been
    // changed in place by somebody else.
    void LookCloser();
    // The next look is a first one.
    void StartOver();

    // What all looks took together.
    struct Work {
        std::size_t listings = 0;
        std::size_t identities = 0;  // files and directories asked for, each
        std::size_t reads = 0;
    };
    const Work& Done() const { return work_; }

  private:
    using NewsByName = std::map<std::string, std::optional<FoundFile>>;

    std::optional<FileIdentity> IdentityOf(const std::string& path);
    bool IsImportUnderWay();
    bool NeedsListing(const FileIdentity& directory) const;
    void LookAtAll(NewsByName* news);
    void LookAtInPlace(NewsByName* news);
    void LookAtFile(const std::string& name, NewsByName* news);
    static bool IsAllInReach(const NewsByName& news);
    void Forget(const NewsByName& news);
    void LeaveGone(NewsByName* news);

    struct Known {
        FileIdentity identity;
        bool isSettled = false;
    };

    const std::string directory_;
    // Of the last listing; a file that no file is: the next look lists.
    Known directoryAsListed_;
    std::map<std::string, Known> files_;
    Work work_;
};

}  // namespace oam::server
