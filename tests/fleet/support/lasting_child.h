// A child that ends with the test, however the test ends.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "child_process.h"

namespace oam::test {

// `settings` are variables of its environment ("KOR_DIR=..."). To be called by the thread that
// lives as long as the child is needed (the kernel ends it with the thread that started it). What
// it says goes into the file.
std::unique_ptr<ChildProcess> StartLasting(const std::vector<std::string>& settings,
                                           const std::vector<std::string>& command,
                                           const std::string& directory, const std::string& output);

}  // namespace oam::test
