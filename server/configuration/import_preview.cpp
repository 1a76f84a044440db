#include "configuration/import_preview.h"

#include <map>

#include "configuration/scratch_file.h"
#include "data_file.h"
#include "failure.h"
#include "file_content.h"
#include "oam/entry.h"
#include "object_kind.h"

namespace oam::server {
namespace {

using Configuration = std::map<std::string, Keywords, NameLess>;

Configuration read(const std::string& path) {
    const FileContent file = LoadFile(path);
    if (!file.error.empty()) throw Failure("cannot read " + Quoted(path) + ": " + file.error);
    Configuration configuration;
    for (const DataObject& object : ReadDataFile(file.content, kExportRoot).objects)
        configuration[object.name] = KeywordsOf(object);
    return configuration;
}

Configuration present(const std::string& directory) {
    const ScratchFile file(directory);
    if (const unsigned code = _oamConfigExport(file.Path().c_str()))
        throw Failure(code, "the configuration cannot be exported");
    return read(file.Path());
}

}  // namespace

std::vector<ObjectDifference> WhatImportChanges(const std::string& directory,
                                                const std::string& file) {
    using Kind = ObjectDifference::Kind;
    const Configuration before = present(directory);
    const Configuration after = read(file);
    Configuration all = before;
    all.insert(after.begin(), after.end());
    std::vector<ObjectDifference> differences;
    for (const auto& [name, ignored] : all) {
        const auto old = before.find(name);
        const auto next = after.find(name);
        ObjectDifference difference;
        difference.object = name;
        difference.kind = old == before.end()   ? Kind::kCreated
                          : next == after.end() ? Kind::kDeleted
                                                : Kind::kChanged;
        difference.changes = CompareKeywords(old == before.end() ? Keywords() : old->second,
                                             next == after.end() ? Keywords() : next->second);
        if (difference.kind != Kind::kChanged || !difference.changes.empty())
            differences.push_back(std::move(difference));
    }
    return differences;
}

}  // namespace oam::server
