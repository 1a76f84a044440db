// Names and values that are not meant well.
#include "support/data_file.h"
#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class ToolHostileText : public ToolTest {
  protected:
    void SetUp() override {
        home.WriteDataFile("Obj0.xmo", DataFile(kName, {{"Driver.Name", kValue}, {"Name", kName}}));
    }

    const std::string kName = "evil\x1b[2J\xff%s%n";
    const std::string kValue = "one\ntwo\xe9\x07";
};

}  // namespace

TEST_F(ToolHostileText, IsEscapedInTables) {
    const std::string objects = Out({"objects"});
    EXPECT_THAT(objects, HasSubstr("\nevil\\x1b[2J\\xff%s%n  board"));
    EXPECT_THAT(objects, Not(HasSubstr("\x1b")));
}

TEST_F(ToolHostileText, IsNeverInvalidJson) {
    const auto objects = Json({"objects"})["objects"];
    EXPECT_EQ(objects[0]["name"], "evil\x1b[2J\xef\xbf\xbd%s%n");
}

TEST_F(ToolHostileText, IsEscapedInMessages) {
    const Finished run = Run({"show", "bogus\x1b]0;x\x07\n%s"});
    EXPECT_THAT(run, Complains(4, "cannot open the object \"bogus\\x1b]0;x\\x07\\n%s\""));
}

TEST_F(ToolHostileText, IsEscapedByCheckAndInItsJson) {
    const Finished run = Run({"check"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("\"evil\\x1b[2J\\xff%s%n\" cannot be kept"));
    EXPECT_THAT(run.out, Not(HasSubstr("\x1b")));
    EXPECT_FALSE(Json({"check"})["problems"].empty());
}

TEST_F(ToolHostileText, IsNotTheToolsOwnText) {
    home.Remove("oam/cfg/Obj0.xmo");
    EXPECT_THAT(Run({"board", "create", "%s%s%n"}), Complains(4, "%s%s%n"));
    EXPECT_THAT(Run({"set", "Supervisor", "%n=%s"}), Complains(6, "%n"));
}

TEST_F(ToolHostileText, InFileNamesIsEscapedToo) {
    OAM_DIRECT_ONLY();
    home.WriteDataFile("a\x1b\nb.xmo", "rubbish");
    const Finished run = Run({"check"});
    EXPECT_THAT(run.out, HasSubstr("a\\x1b\\nb.xmo"));
    EXPECT_THAT(run.out, Not(HasSubstr("\x1b")));
}

}  // namespace oam::test
