// How many of all the points at which something can happen are tried, and what came of them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace oam::torture {

// OAM_TORTURE=full in the environment.
bool IsFull();
// Where a rig's chance comes from: OAM_TORTURE_SEED in the environment, so that a failure can be
// repeated, else another one in each run.
unsigned long Seed();

// Every point with OAM_TORTURE=full in the environment, else so many spread evenly, always with the
// first and the last.
std::vector<std::size_t> ChosenPoints(std::size_t count, std::size_t most);

// "3,120 points, 0 lost" as the last line of a rig; also in the test's output.
void TellFigures(const std::string& rig, const std::string& figures);
void TellFigures(const std::string& line);

// "1,000,000"
std::string Grouped(unsigned long number);

}  // namespace oam::torture
