#include "guide.h"

#include <fstream>

namespace oam::test {

std::vector<GuideBlock> GuideBlocks(const std::filesystem::path& guide) {
    constexpr std::string_view kFence = "```";
    std::vector<GuideBlock> blocks;
    bool isInside = false;
    std::ifstream file(guide);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(kFence)) {
            isInside = !isInside;
            if (isInside) blocks.push_back({line.substr(kFence.size()), ""});
        } else if (isInside) {
            blocks.back().text += line + '\n';
        }
    }
    return blocks;
}

}  // namespace oam::test
