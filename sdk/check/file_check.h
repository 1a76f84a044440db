// What can be judged without running anything: the file's form, its entries, what it exports and
// how its own functions are bound.
#pragma once

#include <string>
#include <vector>

#include "elf_file.h"
#include "finding.h"

namespace oam::check {

std::vector<Finding> CheckFile(const ElfFile& file, ModuleKind kind);

// The first few names, and how many more there are.
std::string NameList(const std::vector<std::string>& names);

}  // namespace oam::check
