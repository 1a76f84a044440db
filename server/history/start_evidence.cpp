#include "history/start_evidence.h"

#include <sys/stat.h>

#include "history/file_identity.h"
#include "history/found_file.h"

namespace oam::server {

std::string StartTrace(const std::string& startupLog) {
    const auto log = FileIdentity::Of(startupLog);
    return log ? log->Text() : std::string();
}

bool WasDroppedSince(const std::string& directory, const std::string& file,
                     std::chrono::system_clock::time_point since) {
    const std::string dropped = file.substr(0, file.rfind('.')) + ".bak";
    struct stat status;
    if (lstat((directory + '/' + dropped).c_str(), &status) != 0) return false;
    // Renaming a file is a change of it.
    if (std::chrono::system_clock::from_time_t(status.st_ctim.tv_sec) <
        std::chrono::time_point_cast<std::chrono::seconds>(since))
        return false;
    const auto found = FindFile(directory, dropped);
    return found && found->condition == FoundFile::Condition::kSpoiled;
}

}  // namespace oam::server
