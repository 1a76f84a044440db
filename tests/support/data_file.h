// The bytes of object data files and export files, composed apart from the library: tests compare
// with them and start from them.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace oam::test {

// Name and value of each entry, in the order in which they are written.
using Entries = std::vector<std::pair<std::string, std::string>>;

struct ObjectEntries {
    std::string name;
    Entries entries;
};

// One object's data file.
std::string DataFile(const std::string& object, const Entries& entries);
// A whole-configuration export.
std::string ExportFile(const std::vector<ObjectEntries>& objects);

// The standard entries of an object without and with a product.
Entries StandardEntries(const std::string& name);
Entries StandardEntries(const std::string& name, const std::string& product);

// What a first start writes for the Supervisor.
Entries SupervisorEntries();
// Replaces the value of an entry; the entry must be there.
Entries With(Entries entries, const std::string& name, const std::string& value);
// Takes an entry out.
Entries Without(Entries entries, const std::string& name);

}  // namespace oam::test
