// The guide's fenced blocks: what it lets its reader type, and what it says will be seen.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace oam::test {

struct GuideBlock {
    std::string language;  // "sh", "text", "c"
    std::string text;
};

std::vector<GuideBlock> GuideBlocks(const std::filesystem::path& guide);

}  // namespace oam::test
