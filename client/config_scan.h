// The files of an installation as they lie there, read without the service.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "config_rules.h"
#include "installation.h"

namespace oam {

// Names in the directory whose last extension is `extension` in any case, sorted. A directory that
// cannot be read is a Failure with its reason.
std::vector<std::string> FilesOf(const std::string& directory, const char* extension);

struct ScannedFile {
    std::string name;   // without directory
    std::string error;  // empty: the file was read
    DataFile data;
};

// Every data file of the configuration directory.
std::vector<ScannedFile> ScanDataFiles(const Installation& place);

// Object name to data file, for the files that hold an object.
std::map<std::string, std::string> DataFilesByObject(const Installation& place);

}  // namespace oam
