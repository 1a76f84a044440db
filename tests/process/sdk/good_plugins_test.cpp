// What the judge passes: the plug-ins that ship. The templates are judged where they are built, by
// the guide's own commands.
#include <gtest/gtest.h>

#include "judgement.h"
#include "package.h"

using oam::test::Judge;
using oam::test::PackagePrefix;

namespace {

std::set<std::string> installed(const std::string& extension) {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(PackagePrefix()))
        if (entry.path().extension() == extension) files.insert(entry.path());
    return files;
}

TEST(ShippedPlugins, BreakNoRule) {
    const auto plugins = installed(".bpi");
    EXPECT_FALSE(plugins.empty());
    for (const auto& file : plugins) {
        const auto judgement = Judge(file, {"--timeout", "60"});
        EXPECT_EQ(judgement.Broken(), std::set<std::string>()) << judgement.report.dump(2);
        EXPECT_EQ(judgement.status, 0);
    }
}

TEST(ShippedComponents, BreakNoRule) {
    for (const auto& file : installed(".emc")) {
        const auto judgement = Judge(file, {"--timeout", "60"});
        EXPECT_EQ(judgement.Broken(), std::set<std::string>()) << judgement.report.dump(2);
        EXPECT_EQ(judgement.status, 0);
    }
}

}  // namespace
