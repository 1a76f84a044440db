// Loading every module of a kind: what is told, in which order, and how a failure undoes it. The
// loading of the single module is scripted.
#include "loading/loader.h"

#include "doors/room_test.h"

namespace oam::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr LoaderTexts kTexts = {
    ".tst",
    "\nListing of test files found:\n",
    "Directory for test files \"%s\" not found.\n",
    "No test files found.\n",
    "Test",
    false,
    true,
};

class ScriptedLoader final : public ModuleLoader {
  public:
    explicit ScriptedLoader(const LoaderTexts& texts) : ModuleLoader(texts) {}

  private:
    oam_result Load(const char* fileName) noexcept override {
        return Doors::The().Call("Load", fileName);
    }
    oam_result Init(const char* fileName) noexcept override {
        return Doors::The().Call("Init", fileName);
    }
    oam_result ExitAll() noexcept override { return Doors::The().Call("ExitAll"); }
};

class Loader : public RoomTest {
  protected:
    oam_result LoadAll(bool tellsLongPaths = true) {
        LoaderTexts texts = kTexts;
        texts.tellsLongPaths = tellsLongPaths;
        return ScriptedLoader(texts).LoadAll();
    }
    // The calls without the announcements of the files, which carry their dates.
    std::vector<std::string> Steps() {
        std::vector<std::string> steps;
        for (const std::string& call : doors.Calls()) {
            if (call.find("=> Loading") == std::string::npos) steps.push_back(call);
        }
        return steps;
    }
    // Loads "x.tst" with one step that fails.
    void ExpectUndone(const std::string& step, std::vector<std::string> before) {
        home.Write("lib/x.tst", "");
        doors.Answer(step, OAMERR_ACCESS_DENIED);
        EXPECT_EQ(LoadAll(), OAMERR_ACCESS_DENIED);
        before.push_back("AlertNotify(OAMEVN_ALERT, 2, Test, !! FAILED !! (0x40000006))");
        before.push_back("ExitAll()");
        EXPECT_EQ(Steps(), before);
        EXPECT_THAT(doors.DebugText(), EndsWith("\n\n"));
    }
};

TEST_F(Loader, MissingDirectoryIsToldAndNoFailure) {
    home.Remove("lib");
    EXPECT_EQ(LoadAll(), OAM_SUCCESS);
    EXPECT_THAT(doors.DebugText(),
                EndsWith("----\nDirectory for test files \"" + home.Path("lib") +
                         "\" not found.\n"));
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Loader, DirectoryWithoutAFileOfTheKindIsToldAndNoFailure) {
    home.Write("lib/x.other", "");
    EXPECT_EQ(LoadAll(), OAM_SUCCESS);
    EXPECT_THAT(doors.DebugText(), EndsWith("----\nNo test files found.\n"));
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Loader, LoadsCreatesInitialisesAndConfirms) {
    home.Write("lib/x.TST", "12");
    EXPECT_EQ(LoadAll(), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(),
                ElementsAre(HasSubstr("AlertNotify(OAMEVN_ALERT, 0, Test, => Loading " +
                                      home.Path("lib/x.TST") + " (2 "),
                            "Load(x.TST)", "CreateObject(x.TST, null)", "Init(x.TST)",
                            "AlertNotify(OAMEVN_ALERT, 0, Test, x.TST DONE)"));
    EXPECT_THAT(doors.DebugText(), ::testing::StartsWith("\nListing of test files found:\n"
                                                         "\nFILENAME "));
    EXPECT_THAT(doors.DebugText(), EndsWith("RW \n\n"));
}

TEST_F(Loader, LoadsEveryFileOfTheKind) {
    for (const char* name : {"lib/a.tst", "lib/b.tst", "lib/c.tst", "lib/d.tst.bak"}) {
        home.Write(name, "");
    }
    EXPECT_EQ(LoadAll(), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"Init"}),
                ::testing::UnorderedElementsAre("Init(a.tst)", "Init(b.tst)", "Init(c.tst)"));
}

TEST_F(Loader, ObjectThatExistsAlreadyIsNoFailure) {
    home.Write("lib/x.tst", "");
    doors.Answer("CreateObject", OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(LoadAll(), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(), Contains("Init(x.tst)"));
}

TEST_F(Loader, FailedLoadingUndoesEverything) { ExpectUndone("Load", {"Load(x.tst)"}); }

TEST_F(Loader, FailedCreationUndoesEverything) {
    ExpectUndone("CreateObject", {"Load(x.tst)", "CreateObject(x.tst, null)"});
}

TEST_F(Loader, FailedInitialisationUndoesEverything) {
    ExpectUndone("Init", {"Load(x.tst)", "CreateObject(x.tst, null)", "Init(x.tst)"});
}

TEST_F(Loader, StopsAtTheFirstFailure) {
    for (const char* name : {"lib/a.tst", "lib/b.tst", "lib/c.tst"}) home.Write(name, "");
    int loads = 0;
    doors.On("Load", [&] { return ++loads == 2 ? OAMERR_NOT_FOUND : OAM_SUCCESS; });
    EXPECT_EQ(LoadAll(), OAMERR_NOT_FOUND);
    EXPECT_EQ(loads, 2);
    EXPECT_EQ(doors.CallsOf({"Init"}).size(), 1u);
    EXPECT_EQ(doors.Calls().back(), "ExitAll()");
}

class LongPath : public Loader {
  protected:
    // A file whose path has so many characters.
    void AddFile(size_t length) {
        const size_t directory = home.Path("lib/").size();
        home.Write("lib/" + std::string(length - directory - 4, 'x') + ".tst", "");
    }
};

TEST_F(LongPath, Of259CharactersIsLoaded) {
    AddFile(259);
    EXPECT_EQ(LoadAll(), OAM_SUCCESS);
    EXPECT_EQ(doors.CallsOf({"Init"}).size(), 1u);
}

TEST_F(LongPath, Of260CharactersIsAFailureLikeAnyOther) {
    AddFile(260);
    EXPECT_EQ(LoadAll(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_THAT(doors.Calls(),
                ElementsAre("AlertNotify(OAMEVN_ALERT, 2, Test, !! FAILED !! (0x40000003))",
                            "ExitAll()"));
}

TEST_F(LongPath, IsNotToldByAKindThatDoesNotTellIt) {
    AddFile(260);
    EXPECT_EQ(LoadAll(false), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(LongPath, DirectoryThatDoesNotFitIsNotToldAtAll) {
    home.MoveRootToLength(256);
    EXPECT_EQ(LoadAll(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

}  // namespace
}  // namespace oam::test
