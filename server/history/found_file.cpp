#include "history/found_file.h"

#include <unistd.h>

#include <cerrno>

#include "config_rules.h"
#include "failure.h"
#include "file_content.h"
#include "history/file_identity.h"

namespace oam::server {
namespace {

// What no other moment, user or amount of memory would make readable: no regular file, a link that
// leads nowhere, a disk that cannot give it back.
bool isSpoil(int code) { return code == 0 || code == ENOENT || code == ELOOP || code == EIO; }

}  // namespace

std::optional<FoundFile> FindFile(const std::string& directory, const std::string& name) {
    const std::string path = directory + '/' + name;
    FileContent file = LoadFile(path);
    // A read that failed is tried once more: it tells nothing of the file's content.
    if (file.code == EIO) file = LoadFile(path);
    if (file.code == ENOENT && !FileIdentity::Of(path)) return std::nullopt;
    FoundFile found;
    found.name = name;
    if (!file.error.empty()) {
        found.condition =
            isSpoil(file.code) ? FoundFile::Condition::kSpoiled : FoundFile::Condition::kOutOfReach;
        found.why = Quoted(name) + ": " + file.error;
        return found;
    }
    DataFile data = ReadDataFile(file.content, kObjectRoot);
    if (const auto why = WhyNoObject(data)) {
        found.condition = FoundFile::Condition::kSpoiled;
        found.why = FindingText({name, why->at, why->text});
        return found;
    }
    found.condition = FoundFile::Condition::kObject;
    found.bytes = std::move(file.content);
    found.object = std::move(data.objects.front());
    return found;
}

}  // namespace oam::server
