#include <algorithm>

#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class ToolObjects : public ToolTest {};

// The value of a keyword in the JSON of `show`.
std::string valueOf(const nlohmann::json& shown, const std::string& keyword) {
    for (const auto& entry : shown["keywords"])
        if (entry["keyword"] == keyword) return entry.value("value", "(error)");
    return "(missing)";
}

}  // namespace

TEST_F(ToolObjects, AFreshInstallationHoldsTheSupervisor) {
    EXPECT_EQ(Out({"objects"}),
              "NAME        KIND        DATA FILE\n"
              "Supervisor  supervisor  Super.xmo\n");
}

TEST_F(ToolObjects, ObjectsAreListedWithTheirKindsAndFiles) {
    AddSimBoard();
    EXPECT_EQ(Out({"objects"}),
              "NAME         KIND        DATA FILE\n"
              "Sim E1 left  board       Obj0.xmo\n"
              "sim.bpi      plug-in     sim.xmo\n"
              "Supervisor   supervisor  Super.xmo\n");
    const auto objects = Json({"objects"})["objects"];
    ASSERT_EQ(objects.size(), 3u);
    EXPECT_EQ(objects[1]["kind"], "plug-in");
}

TEST_F(ToolObjects, ShowTellsStoredKeywords) {
    AddSimBoard();
    EXPECT_THAT(Out({"show", "SIM E1 LEFT"}), HasSubstr("\nProduct "));
    const auto shown = Json({"show", "Sim E1 left"});
    EXPECT_EQ(shown["object"], "Sim E1 left");
    EXPECT_EQ(valueOf(shown, "Location.PCI.Slot"), "2");
    EXPECT_EQ(valueOf(shown, "Driver.BoardId"), "");
}

TEST_F(ToolObjects, ShowTellsComputedKeywordsToo) {
    AddSimBoard();
    const auto shown = Json({"show", "Supervisor"});
    EXPECT_EQ(valueOf(shown, "Boards.Count"), "1");
    EXPECT_EQ(valueOf(shown, "Boards[0]"), "Sim E1 left");
    EXPECT_EQ(valueOf(shown, "Products[1]"), "SIM-IP");
    EXPECT_EQ(valueOf(shown, "Version.Major"), "1");
}

TEST_F(ToolObjects, ShowTellsQualifiersWhenAsked) {
    AddSimBoard();
    EXPECT_THAT(Out({"show", "Sim E1 left"}), Not(HasSubstr("?")));
    const std::string text = Out({"show", "Sim E1 left", "--qualifiers"});
    EXPECT_THAT(text, HasSubstr("  ?Max "));
    EXPECT_THAT(text, HasSubstr("  ?Choices[0] "));
    const auto shown = Json({"show", "Supervisor", "--qualifiers"});
    const auto& entries = shown["keywords"];
    const auto setting = std::find_if(entries.begin(), entries.end(), [](const auto& entry) {
        return entry["keyword"] == "OammonLog";
    });
    ASSERT_NE(setting, entries.end());
    EXPECT_EQ((*setting)["qualifiers"]["Description"], "enables logging of board trace");
    EXPECT_EQ((*setting)["qualifiers"]["Choices[1]"], "No");
}

TEST_F(ToolObjects, GetPrintsTheBareValueOfOneKeyword) {
    EXPECT_EQ(Out({"get", "Supervisor", "version.major"}), "1\n");
    EXPECT_EQ(Out({"get", "Supervisor", "AutoStopEnabled", "--qualifier", "Description"}),
              "enables automatic stop of boards\n");
}

TEST_F(ToolObjects, GetPrintsSeveralKeywordsInTheOrderGiven) {
    EXPECT_EQ(Out({"get", "Supervisor", "Version.Minor", "Name"}),
              "KEYWORD        VALUE\n"
              "Version.Minor  0\n"
              "Name           Supervisor\n");
    const auto values = Json({"get", "Supervisor", "Name"})["keywords"];
    ASSERT_EQ(values.size(), 1u);
    EXPECT_EQ(values[0]["value"], "Supervisor");
}

TEST_F(ToolObjects, GetPrintsNothingWhenOneKeywordIsMissing) {
    const Finished run = Run({"get", "Supervisor", "Name", "Bogus"});
    EXPECT_THAT(run, Complains(4, "cannot read \"Bogus\" of \"Supervisor\": OAMERR_NOT_FOUND"));
    EXPECT_EQ(run.out, "");
}

TEST_F(ToolObjects, AnUnknownObjectIsNamed) {
    EXPECT_THAT(Run({"show", "Bogus"}),
                Complains(4, "cannot open the object \"Bogus\": OAMERR_NOT_FOUND (0x40000004)"));
}

TEST_F(ToolObjects, ReadingChangesNoDataFile) {
    AddSimBoard();
    const auto before = DataFiles();
    Out({"show", "Sim E1 left", "--qualifiers"});
    Out({"get", "Sim E1 left", "Name"});
    Out({"board", "list"});
    EXPECT_EQ(DataFiles(), before);
}

}  // namespace oam::test
