// The one form of an object's name for all of its spellings, so that names can be keys in the book.
#pragma once

#include <string>

namespace oam::server {

// Sorts as the service sorts names.
inline std::string ObjectKey(std::string name) {
    for (char& c : name)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return name;
}

}  // namespace oam::server
