// Many objects at once, in the service that runs. Seconds; negative when it failed.
#pragma once

#include <string>

namespace oam::bench {

double createBoards(int count);
// Writes a file of so many boards, and imports it.
double importBoards(int count);
void writeExport(const std::string& file, int count);

}  // namespace oam::bench
