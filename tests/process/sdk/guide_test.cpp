// The guide, step by step, outside the tree and against the installed package.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "guide.h"
#include "package.h"
#include "program.h"
#include "support/installation.h"

using oam::test::GuideBlock;
using oam::test::GuideBlocks;
using oam::test::Installation;
using oam::test::KitFile;
using oam::test::Layout;
using oam::test::PackagePrefix;
using oam::test::ReadText;
using oam::test::RunProgram;
using testing::HasSubstr;

namespace {

class Guide : public testing::Test {
  protected:
    const std::vector<GuideBlock> blocks = GuideBlocks(KitFile("README.md"));
    Installation home{Layout::kBare};
};

// One shell for all, as the reader has one. Each block's output goes to a file of its own.
std::string scriptOf(const std::vector<GuideBlock>& blocks) {
    std::string script = "set -eu\n";
    for (size_t i = 0; i < blocks.size(); ++i) {
        if (blocks[i].language != "sh") continue;
        script += "{\n" + blocks[i].text + "} >block" + std::to_string(i) + " 2>&1\n";
    }
    return script;
}

std::string allOutput(const Installation& home, size_t blocks) {
    std::string output;
    for (size_t i = 0; i < blocks; ++i) {
        const std::string name = "block" + std::to_string(i);
        if (home.Exists(name)) output += name + ":\n" + home.Read(name);
    }
    return output;
}

TEST_F(Guide, HasCommandsThatWorkAndSaysWhatTheyShow) {
    ASSERT_GT(blocks.size(), 5u);
    home.Write("guide.sh", scriptOf(blocks));
    const auto outcome =
        RunProgram({"sh", "guide.sh"}, home.Root(), {"OAM=" + PackagePrefix().string()});
    ASSERT_EQ(outcome.status, 0) << outcome.err << allOutput(home, blocks.size());

    for (size_t i = 1; i < blocks.size(); ++i) {
        if (blocks[i].language != "text") continue;
        ASSERT_EQ(blocks[i - 1].language, "sh") << "what shows " << blocks[i].text;
        const auto shown = home.Read("block" + std::to_string(i - 1));
        std::istringstream lines(blocks[i].text);
        for (std::string line; std::getline(lines, line);) EXPECT_THAT(shown, HasSubstr(line));
    }
}

TEST_F(Guide, ShowsCodeThatCompiles) {
    std::string code = "#include <stdlib.h>\n#include <string.h>\n#include \"oam/plugin.h\"\n";
    for (const auto& block : blocks)
        if (block.language == "c") code += block.text;
    home.Write("shown.c", code);
    const auto outcome =
        RunProgram({"cc", "-fsyntax-only", "-Wall", "-Wextra", "-Werror", "-Wno-unused-function",
                    "-I" + (PackagePrefix() / "include").string(), "shown.c"},
                   home.Root());
    EXPECT_EQ(outcome.status, 0) << outcome.err;
}

TEST_F(Guide, NamesEveryQualifierOfTheService) {
    const auto text = ReadText(KitFile("README.md"));
    for (const char* qualifier : {"Base", "Choices.Count", "Description", "Keywords.Count", "Max",
                                  "Min", "ReadOnly", "Type"})
        EXPECT_THAT(text, HasSubstr(qualifier));
}

size_t sourceLines(const char* file) {
    std::ifstream stream(KitFile(file));
    size_t count = 0;
    for (std::string line; std::getline(stream, line);)
        if (!line.empty() && !line.starts_with("/*")) ++count;
    return count;
}

TEST(Template, IsShort) {
    for (const char* file : {"template/board.c", "template-component/component.c"}) {
        EXPECT_GT(sourceLines(file), 0u);
        EXPECT_LT(sourceLines(file), 60u);
    }
    EXPECT_LT(sourceLines("template/CMakeLists.txt"), 6u);
}

}  // namespace
