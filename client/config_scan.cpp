#include "config_scan.h"

#include <algorithm>
#include <filesystem>

#include "failure.h"
#include "file_content.h"
#include "object_kind.h"

namespace oam {

std::vector<std::string> FilesOf(const std::string& directory, const char* extension) {
    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator entry(directory, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename();
        const size_t dot = name.rfind('.');
        if (dot != std::string::npos && SameName(name.substr(dot), extension))
            names.push_back(name);
    }
    if (error) throw Failure("cannot read " + Quoted(directory) + ": " + error.message());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<ScannedFile> ScanDataFiles(const Installation& place) {
    const std::string directory = place.Path(kConfigDirectory);
    std::vector<ScannedFile> files;
    for (const std::string& name : FilesOf(directory, ".xmo")) {
        const FileContent file = LoadFile(directory + '/' + name);
        files.push_back({name, file.error, {}});
        if (file.error.empty()) files.back().data = ReadDataFile(file.content, kObjectRoot);
    }
    return files;
}

std::map<std::string, std::string> DataFilesByObject(const Installation& place) {
    std::map<std::string, std::string> files;
    for (const ScannedFile& file : ScanDataFiles(place))
        if (!file.data.objects.empty()) files[file.data.objects.front().name] = file.name;
    return files;
}

}  // namespace oam
