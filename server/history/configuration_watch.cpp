#include "history/configuration_watch.h"

#include <unistd.h>

#include <algorithm>
#include <set>
#include <utility>

#include "config_scan.h"
#include "failure.h"

namespace oam::server {
namespace {

// While the service works, the directory may change during every look.
constexpr int kMostTries = 3;

}  // namespace

ConfigurationWatch::ConfigurationWatch(std::string directory) : directory_(std::move(directory)) {}

std::optional<ConfigurationWatch::News> ConfigurationWatch::Look() {
    NewsByName news;
    for (int tries = 1;; ++tries) {
        const timespec now = Now();
        const auto directory = IdentityOf(directory_);
        if (!directory) throw Failure("there is no directory " + Quoted(directory_));
        if (!NeedsListing(*directory)) {
            LookAtInPlace(&news);
            break;
        }
        LookCloser();
        LookAtAll(&news);
        // An import begins by setting the old files aside, and ends by removing them.
        if (IsImportUnderWay()) {
            Forget(news);
            return std::nullopt;
        }
        if (IdentityOf(directory_) == directory) {
            if (IsAllInReach(news)) directoryAsListed_ = {*directory, directory->IsSettled(now)};
            break;
        }
        if (tries == kMostTries) {
            LeaveGone(&news);
            break;
        }
    }
    News result;
    for (auto& [name, found] : news) {
        if (found)
            result.found.push_back(std::move(*found));
        else
            result.gone.push_back(name);
    }
    return result;
}

void ConfigurationWatch::LookCloser() { directoryAsListed_ = {}; }

void ConfigurationWatch::StartOver() {
    LookCloser();
    files_.clear();
}

std::optional<FileIdentity> ConfigurationWatch::IdentityOf(const std::string& path) {
    ++work_.identities;
    return FileIdentity::Of(path);
}

bool ConfigurationWatch::IsImportUnderWay() {
    return IdentityOf(directory_ + kImportAside).has_value();
}

bool ConfigurationWatch::NeedsListing(const FileIdentity& directory) const {
    return !directoryAsListed_.isSettled || directoryAsListed_.identity != directory ||
           // Nobody can make a file in it, so the service writes into the old ones.
           access(directory_.c_str(), W_OK) != 0;
}

void ConfigurationWatch::LookAtAll(NewsByName* news) {
    ++work_.listings;
    std::set<std::string> names;
    for (std::string& name : FilesOf(directory_, ".xmo")) names.insert(std::move(name));
    // A listing may miss a file that is being replaced, so those that it does not have are asked
    // for too.
    for (const auto& [name, known] : files_) names.insert(name);
    for (const std::string& name : names) LookAtFile(name, news);
}

void ConfigurationWatch::LookAtInPlace(NewsByName* news) {
    std::vector<std::string> names;
    for (const auto& [name, known] : files_)
        if (known.identity.IsWrittenInPlace()) names.push_back(name);
    for (const std::string& name : names) LookAtFile(name, news);
}

void ConfigurationWatch::LookAtFile(const std::string& name, NewsByName* news) {
    const timespec now = Now();
    const auto identity = IdentityOf(directory_ + '/' + name);
    const auto known = files_.find(name);
    if (identity && known != files_.end() && known->second.isSettled &&
        known->second.identity == *identity)
        return;
    std::optional<FoundFile> found;
    if (identity) {
        ++work_.reads;
        found = FindFile(directory_, name);
    }
    if (found) {
        files_[name] = {*identity, identity->IsSettled(now) &&
                                       found->condition != FoundFile::Condition::kOutOfReach};
        (*news)[name] = std::move(found);
    } else if (known != files_.end() || news->contains(name)) {
        if (known != files_.end()) files_.erase(known);
        (*news)[name] = std::nullopt;
    }
}

bool ConfigurationWatch::IsAllInReach(const NewsByName& news) {
    return std::none_of(news.begin(), news.end(), [](const auto& one) {
        return one.second && one.second->condition == FoundFile::Condition::kOutOfReach;
    });
}

// What was found was not to be looked at: it is news again the next time.
void ConfigurationWatch::Forget(const NewsByName& news) {
    for (const auto& [name, found] : news) files_[name] = {};
}

// An import may have begun and ended during the look: what has vanished may be back.
void ConfigurationWatch::LeaveGone(NewsByName* news) {
    std::erase_if(*news, [this](const auto& one) {
        if (one.second) return false;
        files_[one.first] = {};
        return true;
    });
}

}  // namespace oam::server
