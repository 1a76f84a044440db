// What must hold between the objects of a configuration, beyond each file's syntax.
//
// Some of what is looked for stops the service's whole start (two boards with one number), some
// makes it drop an object (two with one name), and some makes it write one object over another (two
// that share a data file).
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "data_file.h"

namespace oam {

struct Finding {
    std::string file;
    Position at;
    std::string text;
};

// "oam/cfg/Obj3.xmo:4:10: the end tag ...", with as much of the position as is known.
std::string FindingText(const Finding& finding);

struct FoundObject {
    std::string file;
    DataObject object;
};

// Tells whether boards of a product are served, so that their numbers must differ.
using IsServed = std::function<bool(const std::string& product)>;

std::vector<Finding> CheckObjects(const std::vector<FoundObject>& objects, const IsServed& served);

// Plug-ins, components and the Supervisor have data files that their names decide; `names` are
// objects, and files in the library directory that will be objects at the next start.
struct FoundName {
    std::string file;
    Position at;
    std::string name;
};
std::vector<Finding> CheckSharedDataFiles(const std::vector<FoundName>& names);

}  // namespace oam
