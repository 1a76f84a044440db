#include <sys/stat.h>

#include "support/data_file.h"
#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ToolCheck : public ToolTest {
  protected:
    // The problems, each as "file:line: problem".
    std::vector<std::string> Problems() const {
        std::vector<std::string> problems;
        const auto answer = Json({"check"});
        for (const auto& found : answer["problems"])
            problems.push_back(found["file"].get<std::string>() +
                               (found["line"].is_null() ? "" : ":" + found["line"].dump()) + ": " +
                               found["problem"].get<std::string>());
        return problems;
    }

    void WriteBoard(const std::string& file, const std::string& name,
                    const std::string& number) const {
        Entries entries = StandardEntries(name, "SIM-E1");
        entries.emplace_back("Number", number);
        home.WriteDataFile(file, DataFile(name, entries));
    }
};

std::string onlyOf(const std::vector<std::string>& problems) {
    return problems.size() == 1 ? problems[0] : ::testing::PrintToString(problems);
}

}  // namespace

TEST_F(ToolCheck, FindsNothingInAWorkingInstallation) {
    AddSimBoard();
    const auto before = DataFiles();
    EXPECT_EQ(Out({"check"}),
              "data files: 3, objects: 3, plug-ins and components: 1, problems: 0\n");
    EXPECT_EQ(DataFiles(), before);
    EXPECT_EQ(Json({"check"})["inUseBy"], nullptr);
}

TEST_F(ToolCheck, NeedsNoServiceAndNoLock) {
    Out({"check"});
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
    EXPECT_FALSE(home.Exists("oam/oam.lock"));
}

TEST_F(ToolCheck, NamesFileLineAndReasonAndEndsWithStatusOne) {
    home.WriteDataFile("Obj3.xmo",
                       "<OA&M Configuration ver. 1.0 - Object>\n   <B>\n      <Name>B</Nam>\n");
    const Finished run = Run({"check"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("oam/cfg/Obj3.xmo:3:14: \"</Nam>\" does not close \"<Name>\" of "
                                   "line 3; the service sets such a file aside"));
    EXPECT_THAT(run.out, HasSubstr("problems: 1\n"));
    EXPECT_EQ(home.List("oam/cfg"), std::vector<std::string>{"Obj3.xmo"});
}

TEST_F(ToolCheck, FindsTwoFilesForOneObject) {
    WriteBoard("Obj0.xmo", "Board 1", "0");
    WriteBoard("Obj1.xmo", "BOARD 1", "1");
    EXPECT_THAT(onlyOf(Problems()), HasSubstr("Obj1.xmo:3: a second object named \"BOARD 1\""));
}

TEST_F(ToolCheck, FindsTwoBoardsWithOneNumber) {
    WriteBoard("Obj0.xmo", "A", "4");
    WriteBoard("Obj1.xmo", "B", "4");
    EXPECT_THAT(onlyOf(Problems()), HasSubstr("board number 4 belongs to \"A\""));
}

TEST_F(ToolCheck, FindsANameTooLongForTheServicesBuffers) {
    WriteBoard("Obj0.xmo", std::string(127, 'n'), "0");
    EXPECT_THAT(Problems(), IsEmpty());
    WriteBoard("Obj0.xmo", std::string(128, 'n'), "0");
    EXPECT_THAT(onlyOf(Problems()), HasSubstr("longer than 127 bytes"));
}

TEST_F(ToolCheck, FindsAnObjectInAFileThatIsNotItsOwn) {
    home.WriteDataFile("Obj0.xmo", DataFile("Supervisor", StandardEntries("Supervisor")));
    EXPECT_THAT(onlyOf(Problems()), HasSubstr("\"Supervisor\" is read from \"Super.xmo\""));
}

TEST_F(ToolCheck, FindsTwoObjectsInOneFile) {
    home.WriteDataFile("Obj0.xmo",
                       "<OA&M Configuration ver. 1.0 - Object>\n<A><Name>A</></A>\n"
                       "<B><Name>B</></B>\n</OA&M Configuration ver. 1.0 - Object>\n");
    EXPECT_THAT(onlyOf(Problems()), HasSubstr("Obj0.xmo:3: a second object in one data file"));
}

TEST_F(ToolCheck, FindsLibrariesThatWouldShareADataFile) {
    for (const char* name : {"x.bpi", "x.emc", "x.y.bpi", "Super.bpi", "Obj0.bpi"})
        home.Write(std::string("lib/") + name, "\177ELF");
    const auto problems = Problems();
    EXPECT_EQ(problems.size(), 4u) << ::testing::PrintToString(problems);
    for (const std::string& problem : problems)
        EXPECT_THAT(problem, HasSubstr("would share the data file"));
}

TEST_F(ToolCheck, FindsLibrariesThatCannotBeLoaded) {
    home.Write("lib/text.bpi", "no library");
    EXPECT_THAT(onlyOf(Problems()), HasSubstr("lib/text.bpi: it is not a shared library"));
    home.Remove("lib/text.bpi");
    home.MakeDirectory("lib/dir.emc");
    EXPECT_THAT(onlyOf(Problems()), HasSubstr("lib/dir.emc: it is not a regular file"));
}

TEST_F(ToolCheck, FindsLibraryNamesThatDifferOnlyInCase) {
    home.Write("lib/a.bpi", "\177ELF");
    home.Write("lib/A.BPI", "\177ELF");
    EXPECT_THAT(onlyOf(Problems()), HasSubstr("another file has this name but for its case"));
}

TEST_F(ToolCheck, FindsPathsLongerThanTheServicesBuffers) {
    const size_t room = 127 - home.Path("lib/").size();
    const std::string fits = std::string(room - 4, 'p') + ".bpi";
    home.Write("lib/" + fits, "\177ELF");
    EXPECT_THAT(Problems(), IsEmpty());
    home.Write("lib/x" + fits, "\177ELF");
    EXPECT_THAT(onlyOf(Problems()), HasSubstr("its path has 128 characters"));
}

TEST_F(ToolCheck, DoesNotWaitForANamedPipe) {
    ASSERT_EQ(mkfifo(home.Path("oam/cfg/Obj0.xmo").c_str(), 0666), 0);
    EXPECT_THAT(onlyOf(Problems()), HasSubstr("Obj0.xmo: it is not a regular file"));
}

TEST_F(ToolCheck, FindsThatThereIsNoInstallation) {
    home.Remove("oam/log");
    EXPECT_THAT(onlyOf(Problems()), HasSubstr("is not an installation"));
}

TEST_F(ToolCheck, TellsOfFilesThatAreNoDataFilesNothing) {
    home.WriteDataFile("Obj0.bak", "rubbish");
    home.Write("lib/readme.txt", "rubbish");
    EXPECT_THAT(Problems(), IsEmpty());
}

// The reader of `check` and the service's own agree on which files can be read.
TEST_F(ToolCheck, JudgesDataFilesAsTheServiceDoes) {
    const std::string begin = "<OA&M Configuration ver. 1.0 - Object>";
    const std::string end = "</OA&M Configuration ver. 1.0 - Object>";
    const std::string name = "<Name>B</>";
    const auto board = [&](const std::string& text) { return begin + "<B>" + text + "</B>" + end; };
    const std::string cases[] = {
        board(name),
        "<!x><?y>" + board(name) + "<!z>",
        board(name + "<A>  a > b  </A>"),
        board(name + "<A></><C></C><D> </>"),
        board(name + "<A><!c></>"),
        board(name + "<A>" + std::string(2047, 'x') + "</>"),
        board("<A\\b>x</>" + name),
        board("< Name >B</>"),
        board("< Name >B</ Name>"),
        board(name + "<A>" + std::string(2048, 'x') + "</>"),
        board(name + "<A>x</B>"),
        board(name + "<A><C>x</></A>"),
        board(name + "<" + std::string(254, 'k') + ">x</>"),
        board(name + "x"),
        board("<Name></>"),
        board(""),
        begin + name + end,
        begin + "<A><B>" + name + "</B></A>" + end,
        begin + "<B>" + name + "</>" + end,
        begin + "<B>" + name + "</b>" + end,
        begin + "<B>" + name + "</B></>",
        begin + "<B>" + name + "</B>",
        begin + "<B>" + name,
        begin + end,
        "<OA&M Configuration ver. 1.0><B>" + name + "</B></OA&M Configuration ver. 1.0>",
        board(name) + "<B>",
        board(name) + "x",
        board(std::string("<Name>B\0</>", 11)),
        "",
        " \n",
        "\xff\xfe<",
    };
    for (const std::string& text : cases) {
        home.Remove("oam/cfg");
        home.MakeDirectory("oam/cfg");
        home.WriteDataFile("Obj0.xmo", text);
        const bool isFound = !Problems().empty();
        Out({"objects"});
        const bool isRejected = home.Exists("oam/cfg/Obj0.bak");
        EXPECT_EQ(isFound, isRejected) << text;
    }
}

}  // namespace oam::test
