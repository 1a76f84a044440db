#include "support/exported_functions.h"

#include <gtest/gtest.h>

#include <fstream>

namespace oam::test {

std::set<std::string> ExportedFunctions() {
    std::ifstream map(OAM_EXPORTS_MAP);
    EXPECT_TRUE(map.is_open()) << OAM_EXPORTS_MAP;
    std::set<std::string> exported;
    for (std::string word; map >> word;) {
        const bool isName = word.ends_with(';') && word != "*;" && word != "};";
        if (isName) exported.insert(word.substr(0, word.size() - 1));
    }
    EXPECT_EQ(exported.erase("g_bOamIsRunning"), 1u) << "the one variable";
    return exported;
}

}  // namespace oam::test
