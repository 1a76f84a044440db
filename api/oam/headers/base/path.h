// Paths under the installation directory.
#pragma once

#include "oam/codes.h"

// The installation directory followed by the relative path, as it is. OAMERR_NOT_ENOUGH_MEMORY when
// the directory cannot be had or the whole does not fit in `size`. The flag goes to the platform.
oam_result GetFullPath(bool flag, const char* relativePath, char* buffer, unsigned size) noexcept;

// Makes every missing directory of the path; what follows the last "/" is a file name. The path is
// changed and restored in between. Failures show when the file is opened.
void CreatePathDirs(char* path) noexcept;
