// A database file whose content cannot be right gets another name, with the files beside it.
#pragma once

#include <string>

namespace oam::server {

// Examines all of the file. Its new name, or nothing when it is sound or not there. A StoreError
// when it cannot be told, or cannot be renamed. One call at a time in a process.
std::string setAsideIfSpoiled(const std::string& path);

}  // namespace oam::server
