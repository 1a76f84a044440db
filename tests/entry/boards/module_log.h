// What loading modules leaves on the start-up log, composed apart from the library.
#pragma once

#include <string>
#include <vector>

#include "support/log_text.h"

namespace oam::test {

// What the lookup of a missing entry and a refused loading give.
constexpr unsigned kNoSymbol = 0xf0028;
constexpr unsigned kCannotLoad = 0xf0027;

// Stages of the start, as kStageBanners counts them.
constexpr int kComponentStage = 2;
constexpr int kPluginStage = 3;

// "<source>(I): => Loading ..." for an existing file, with its line end.
std::string LoadingLine(const std::string& source, const std::string& path);
std::string DoneLine(const std::string& source, const std::string& file);
// "<source>(E): !! FAILED !! (0x...)", with its line end.
std::string FailedLine(const std::string& source, unsigned code);

// The lines of one stage of the start: those between its banner and its "DONE", or, when it was not
// confirmed, all but the log's stop line. Fails the test when the log has no such banner.
std::string StageLines(const std::string& log, int stage);

// The names in a directory, in the order in which the system lists them.
std::vector<std::string> DirectoryOrder(const std::string& path);

}  // namespace oam::test
