#include "support/data_file.h"
#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class ToolSet : public ToolTest {
  protected:
    void SetUp() override { AddSimBoard(); }

    std::string Value(const std::string& keyword) const {
        return Out({"get", "Sim E1 left", keyword});
    }

    // A change that must be refused, and leave every data file as it was.
    // Vetoed, unless another status is given.
    void ExpectRefused(const Words& assignments, const std::string& why, int status = 6) const {
        Words words{"set", "Sim E1 left"};
        words.insert(words.end(), assignments.begin(), assignments.end());
        const auto before = DataFiles();
        const Finished run = Run(words);
        EXPECT_THAT(run, Complains(status, why)) << ::testing::PrintToString(assignments);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(DataFiles(), before) << ::testing::PrintToString(assignments);
    }
};

}  // namespace

TEST_F(ToolSet, ChangesSeveralKeywordsAtOnce) {
    EXPECT_EQ(Out({"set", "Sim E1 left", "Number=7", "Driver.BoardId=a=b"}),
              "KEYWORD         VALUE\n"
              "Number          7\n"
              "Driver.BoardId  a=b\n");
    EXPECT_EQ(Value("Number"), "7\n");
    EXPECT_EQ(Value("Driver.BoardId"), "a=b\n");
    EXPECT_EQ(Json({"set", "Sim E1 left", "Driver.BoardId="})["changed"][0]["value"], "");
}

TEST_F(ToolSet, KeepsNothingWhenALaterKeywordIsRefused) {
    ExpectRefused({"Number=7", "Driver.BoardId=x", "Location.PCI.Slot=99"},
                  "cannot set \"Location.PCI.Slot\" of \"Sim E1 left\", nothing was changed: "
                  "OAMERR_SET_BOARD_KEYWORD_FAIL");
    ExpectRefused({"Number=7", "Bogus=x"}, "OAMERR_");
    ExpectRefused({"Number=7", "Product=SIM-IP"}, "OAMERR_ACCESS_DENIED");
}

TEST_F(ToolSet, KeepsNothingWhenTheCommitIsRefused) {
    Out({"board", "add", "Sim E1 right"});
    ExpectRefused({"Driver.BoardId=x", "Number=1"}, "OAMERR_ALREADY_EXISTS", 1);
    ExpectRefused({"Driver.BoardId=x", "Name=sim e1 RIGHT"}, "OAMERR_ALREADY_EXISTS", 1);
}

TEST_F(ToolSet, KeepsNothingWhenThePlugInWouldNotTakeTheOldValueBack) {
    std::string file = home.ReadDataFile("Obj0.xmo");
    const std::string good = "<Location.PCI.Bus>1</>";
    ASSERT_NE(file.find(good), std::string::npos);
    file.replace(file.find(good), good.size(), "<Location.PCI.Bus>odd</>");
    home.WriteDataFile("Obj0.xmo", file);
    ExpectRefused({"Location.PCI.Bus=3", "Location.PCI.Slot=99"}, "OAMERR_");
    EXPECT_EQ(Value("Location.PCI.Bus"), "odd\n");
}

TEST_F(ToolSet, RefusesWhatADataFileCannotKeep) {
    for (const char* value : {"a<b", " x", "x ", "two\nlines", "\x1b[2J"})
        ExpectRefused({"Number=7", std::string("Driver.BoardId=") + value}, "cannot be kept", 1);
    ExpectRefused({"Driver.BoardId=" + std::string(2048, 'x')}, "longer than 2047 bytes", 1);
    ExpectRefused({"!x=1"}, "the keyword name \"!x\" cannot be kept", 1);
    for (const char* name : {"", "a>b", "a\\b", "/x", " x", "x.bpi", "Supervisor"})
        ExpectRefused({std::string("name=") + name}, "cannot be kept", 1);
    ExpectRefused({"Name=" + std::string(128, 'n')}, "longer than 127 bytes", 1);
}

TEST_F(ToolSet, KeepsTheLongestValueOverAStart) {
    const std::string longest(2047, 'x');
    Out({"set", "Sim E1 left", "Driver.Name=" + longest});
    EXPECT_EQ(Value("Driver.Name"), longest + "\n");
}

TEST_F(ToolSet, RenamesABoard) {
    Out({"set", "Sim E1 left", "Name=Trunk 1"});
    EXPECT_THAT(Out({"objects"}), HasSubstr("Trunk 1 "));
    EXPECT_THAT(Out({"objects"}), Not(HasSubstr("Sim E1 left")));
    EXPECT_EQ(Out({"get", "Trunk 1", "Name"}), "Trunk 1\n");
}

TEST_F(ToolSet, RefusesTheSupervisorsFixedKeywords) {
    const auto before = DataFiles();
    EXPECT_THAT(Run({"set", "Supervisor", "AutoStartEnabled=Yes", "Version.Major=2"}),
                Complains(6,
                          "cannot set \"Version.Major\" of \"Supervisor\", nothing was changed: "
                          "OAMERR_ACCESS_DENIED"));
    EXPECT_EQ(DataFiles(), before);
}

TEST_F(ToolSet, ChangesAndShowsTheServicesSettings) {
    Out({"supervisor", "autostartenabled=yes", "SynchronizeEnabled=Yes"});
    const auto settings = Json({"supervisor"})["settings"];
    ASSERT_EQ(settings.size(), 4u);
    EXPECT_EQ(settings[0]["keyword"], "AutoStartEnabled");
    EXPECT_EQ(settings[0]["value"], "Yes");
    EXPECT_EQ(settings[1]["value"], "No");
    EXPECT_EQ(settings[2]["value"], "Yes");
    EXPECT_THAT(Run({"supervisor", "AutoStartEnabled=on"}), Complains(6, "OAMERR_ACCESS_DENIED"));
}

TEST_F(ToolSet, TellsThatTraceLoggingDoesNotLast) {
    const Finished run = Run({"supervisor", "OammonLog=Yes"});
    EXPECT_THAT(run, Complains(0, "switches OammonLog off again"));
    EXPECT_EQ(Json({"supervisor"})["settings"][3]["value"], "No");
}

}  // namespace oam::test
