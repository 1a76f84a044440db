// Paths under the installation directory.
#pragma once

#include <limits.h>

#include "base/text.h"

// The installation directory followed by the relative path, as it is. OAMERR_NOT_ENOUGH_MEMORY when
// the directory cannot be had or the whole does not fit in `size`. The flag goes to the platform.
oam_result GetFullPath(bool flag, const char* relativePath, char* buffer, unsigned size) noexcept;

// Makes every missing directory of the path; what follows the last "/" is a file name. The path is
// changed and restored in between. Failures show when the file is opened.
void CreatePathDirs(char* path) noexcept;

namespace oam {

// Whether a path could not be opened for want of memory or descriptors, because of the device, or
// because a signal came: it may well be there.
bool IsOutOfMeans(int error) noexcept;

// "<directory>/<name>", or "<directory><name>" for a name that begins with a slash: a path below a
// directory of the installation, made without memory, since what protects files must not fail for
// want of it. One that is too long is empty, which no call of the system takes for a file.
class JoinedPath {
  public:
    JoinedPath(const char* directory, const char* name) noexcept;
    const char* Get() const noexcept { return text_; }

  private:
    // A directory, one directory in it, and the longest file name.
    char text_[kPathSize + 2 * (NAME_MAX + 1)];
};

}  // namespace oam
