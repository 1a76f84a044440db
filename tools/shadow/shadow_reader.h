// The shadow as this process reads it, through the library's readers.
//
// A reader attaches for its life and looks at the segment that is there when it attaches; attaching
// makes an empty one where there is none. Whatever cannot be read or found is a Failure with the
// code's name. One reader at a time.
#pragma once

#include <string>

#include "shadow_table.h"

namespace oam::shadow {

class ShadowReader {
  public:
    ShadowReader();
    ~ShadowReader();
    ShadowReader(const ShadowReader&) = delete;
    ShadowReader& operator=(const ShadowReader&) = delete;

    // Each is one state of the table.
    Table ReadTable() const;
    Board FindByName(const std::string& name) const;
    Board FindByNumber(unsigned number) const;
    Board FindByDriverIds(const std::string& driverName, const std::string& boardId) const;
};

}  // namespace oam::shadow
