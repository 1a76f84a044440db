// A reader of data files and exports of its own, so that a file is judged before the service, which
// renames or drops what it cannot read, lays hands on it.
//
// Both hold a root element, in it one directory for each object, and in it one element for each
// keyword: "<name>value</>" or "<name>value</name>". The root's name tells the two apart; a data
// file holds one object. Reading stops at the first mistake; what stood before it is kept.
//
// An element without any text is a keyword with an empty value when nothing at all stands between
// its tags; with a comment between them it is no keyword.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data_token.h"

namespace oam {

constexpr std::string_view kObjectRoot = "OA&M Configuration ver. 1.0 - Object";
constexpr std::string_view kExportRoot = "OA&M Configuration ver. 1.0";

// The open directories' names, each with a backslash before it, and a NUL.
constexpr size_t kDataPathSize = 256;

struct DataEntry {
    std::string name;
    std::string value;
    Position at;
};

struct DataObject {
    std::string name;
    Position at;
    std::vector<DataEntry> entries;

    // Null when there is none. The last of several counts, as it does for the service.
    const DataEntry* Find(const std::string& keyword) const;
};

struct DataMistake {
    Position at;
    std::string text;
};

struct DataFile {
    std::vector<DataObject> objects;
    std::optional<DataMistake> mistake;
};

DataFile ReadDataFile(std::string_view content, std::string_view root);

// Why the service does not take a data file for its object; nothing when it does.
std::optional<DataMistake> WhyNoObject(const DataFile& file);

}  // namespace oam
