#include "history/configuration_export.h"

#include <gtest/gtest.h>

#include "data_files.h"
#include "matchers.h"
#include "transfer_file.h"

namespace oam::server::test {
namespace {

using oam::test::ExportFile;
using ::testing::IsEmpty;

std::vector<std::string> findings(const std::string& text) {
    const oam::test::Installation home;
    home.Write("export", text);
    std::vector<std::string> texts;
    for (const Finding& finding :
         JudgeTransferFile(home.Path("export"), [](const std::string&) { return true; }).findings)
        texts.push_back(FindingText(finding));
    return texts;
}

}  // namespace

TEST(ConfigurationExport, IsWhatTheServiceWrites) {
    const Entries a = StandardEntries("a", "SIM-E1");
    const Entries b = StandardEntries("B");
    const std::string text = ExportText({{"B", DataFile("B", b)}, {"a", DataFile("a", a)}});
    EXPECT_EQ(text, ExportFile({{"a", a}, {"B", b}}));
    EXPECT_THAT(findings(text), IsEmpty());
}

TEST(ConfigurationExport, PutsInOrderWhatAHandHasWritten) {
    const std::string text = ExportText(
        {{"A", DataFile("A", {{"zeta", "1"}, {"Number", "1"}, {"Name", "A"}, {"NUMBER", "2"}})}});
    EXPECT_EQ(text, ExportFile({{"A", {{"Name", "A"}, {"Number", "2"}, {"zeta", "1"}}}}));
    EXPECT_THAT(findings(text), IsEmpty());
}

TEST(ConfigurationExport, NamesAnObjectAsTheServiceWould) {
    // Without a name, or with another one, a file could not be imported.
    EXPECT_EQ(ExportText({{"A", DataFile("A", {{"Number", "1"}})}}),
              ExportFile({{"A", {{"Name", "A"}, {"Number", "1"}}}}));
    EXPECT_EQ(ExportText({{"A", DataFile("A", {{"Name", "B"}})}}),
              ExportFile({{"A", {{"Name", "A"}}}}));
}

TEST(ConfigurationExport, KeepsEmptyValuesAndBytesAboveAscii) {
    const Entries entries{{"Empty", ""}, {"Name", "\xc3\xa4"}, {"Value", "\x80\xfe\xff"}};
    const std::string text = ExportText({{"\xc3\xa4", DataFile("\xc3\xa4", entries)}});
    EXPECT_EQ(text, ExportFile({{"\xc3\xa4", entries}}));
    EXPECT_THAT(findings(text), IsEmpty());
}

TEST(ConfigurationExport, OfNothingIsNoConfiguration) {
    EXPECT_EQ(ExportText({}), ExportFile({}));
    EXPECT_FALSE(findings(ExportText({})).empty());
}

}  // namespace oam::server::test
