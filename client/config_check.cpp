#include "config_check.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <set>

#include "config_scan.h"
#include "failure.h"
#include "file_content.h"
#include "object_kind.h"
#include "storable.h"

namespace oam {
namespace {

class Check {
  public:
    explicit Check(const Installation& place) : place_(place) {}

    CheckResult Run() {
        result_.holder = LockFile::Holder(place_);
        if (!CheckDirectories()) return std::move(result_);
        for (const ScannedFile& file : ScanDataFiles(place_)) CheckDataFile(file);
        if (CheckLibraryDirectory())
            for (const char* extension : {".bpi", ".emc"}) CheckLibraries(extension);
        Add(CheckObjects(objects_, [](const std::string& product) { return !product.empty(); }));
        Add(CheckSharedDataFiles(names_));
        result_.objects = objects_.size();
        return std::move(result_);
    }

  private:
    bool CheckDirectories() {
        try {
            place_.RequireReady(R_OK | X_OK);
            return true;
        } catch (const Failure& failure) {
            Add({place_.Directory(), {}, std::string(failure.what()) + "; " + failure.Advice()});
            return false;
        }
    }

    void CheckDataFile(const ScannedFile& file) {
        ++result_.dataFiles;
        const std::string path = std::string(kConfigDirectory + 1) + '/' + file.name;
        CheckPath(path);
        if (!file.error.empty())
            return Add({path, {}, file.error + ": the service would not start"});
        const DataFile& data = file.data;
        if (const auto why = WhyNoObject(data))
            Add({path, why->at,
                 why->text + "; the service sets such a file aside at its next start"});
        for (const DataObject& object : data.objects) {
            const auto decided = DecidedDataFile(object.name);
            if (decided && *decided != file.name)
                Add({path, object.at, Quoted(object.name) + " is read from " + Quoted(*decided)});
            objects_.push_back({path, object});
            names_.push_back({path, object.at, object.name});
        }
    }

    // An installation without one is an installation without plug-ins.
    bool CheckLibraryDirectory() {
        if (access(place_.Path(kPluginDirectory).c_str(), R_OK | X_OK) == 0) return true;
        if (errno != ENOENT) Add({kPluginDirectory + 1, {}, std::strerror(errno)});
        return false;
    }

    void CheckLibraries(const char* extension) {
        std::set<std::string, NameLess> seen;
        for (const std::string& name : FilesOf(place_.Path(kPluginDirectory), extension)) {
            ++result_.libraries;
            const std::string path = std::string(kPluginDirectory + 1) + '/' + name;
            CheckPath(path);
            CheckIsLibrary(path);
            if (!seen.insert(name).second)
                Add({path, {}, "another file has this name but for its case"});
            const std::string why = WhyObjectNameIsLost(name);
            if (!why.empty()) Add({path, {}, "the object of this name cannot be kept: " + why});
            names_.push_back({path, {}, name});
        }
    }

    void CheckPath(const std::string& path) {
        const size_t length = place_.Path("/" + path).size();
        if (length >= kPathSize)
            Add({path,
                 {},
                 "its path has " + std::to_string(length) +
                     " characters; more than 127 stop the service's start"});
    }

    void CheckIsLibrary(const std::string& path) {
        constexpr std::string_view kMark = "\177ELF";
        const FileContent file = LoadStart(place_.Path("/" + path), kMark.size());
        if (!file.error.empty())
            Add({path, {}, file.error + ": the service would not start"});
        else if (file.content != kMark)
            Add({path, {}, "it is not a shared library: the service would not start"});
    }

    void Add(Finding finding) { result_.findings.push_back(std::move(finding)); }

    void Add(const std::vector<Finding>& findings) {
        result_.findings.insert(result_.findings.end(), findings.begin(), findings.end());
    }

    const Installation& place_;
    CheckResult result_;
    std::vector<FoundObject> objects_;
    std::vector<FoundName> names_;
};

}  // namespace

CheckResult CheckInstallation(const Installation& place) { return Check(place).Run(); }

}  // namespace oam
