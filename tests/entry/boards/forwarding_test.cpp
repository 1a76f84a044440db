// How the objects of boards and plug-ins reach the plug-in behind them.
#include <functional>

#include "boards.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The same for a board's object and for the plug-in's own.
class Forwarding : public BoardTest, public testing::WithParamInterface<const char*> {
  protected:
    void SetUp() override {
        BoardTest::SetUp();
        Configure("Board A", {{"Location.PCI.Bus", "1"}});
        Configure("Board B");
        AddPluginFor("other.bpi", {"Other"});
        StartQuietly();
    }
    std::string Object() const { return GetParam(); }
    unsigned long OpenQuietly(unsigned mode) {
        const unsigned long handle = Open(Object(), mode);
        recorder.Clear();
        return handle;
    }
};

TEST_P(Forwarding, PassesOpeningAndClosingWithTheHandle) {
    const unsigned long reading = Open(Object(), kRead);
    const unsigned long again = Open(Object(), kProviderRead);
    EXPECT_EQ(_oamCloseObject(again), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject_WOAN(reading), OAM_SUCCESS);
    const unsigned long writing = Open(Object(), kWrite);
    EXPECT_EQ(_oamCloseObject(writing), OAM_SUCCESS);
    EXPECT_THAT(
        recorder.Lines({"OpenObject", "CloseObject"}),
        ElementsAre("rec.bpi OpenObject(0)", "rec.bpi OpenObject(2)", "rec.bpi CloseObject()",
                    "rec.bpi CloseObject()", "rec.bpi OpenObject(1)", "rec.bpi CloseObject()"));
    const auto opened = recorder.Calls("OpenObject");
    const auto closed = recorder.Calls("CloseObject");
    EXPECT_EQ(opened[0].handle, reading);
    EXPECT_EQ(opened[1].handle, again);
    EXPECT_EQ(closed[0].handle, again);
    EXPECT_EQ(closed[1].handle, reading);
    EXPECT_EQ(opened[2].handle, writing);
    EXPECT_EQ(closed[2].handle, writing);
}

TEST_P(Forwarding, PassesAReadingWithTheCallersSize) {
    const unsigned long handle = OpenQuietly(kRead);
    char buffer[77];
    EXPECT_EQ(_oamGetKeyword(handle, "Name", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, Object().c_str());
    EXPECT_THAT(recorder.Lines(), ElementsAre("rec.bpi GetKeyword(Name, 77)"));
    EXPECT_EQ(recorder.Calls().at(0).handle, handle);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_P(Forwarding, PassesAnExistenceTest) {
    const unsigned long handle = OpenQuietly(kRead);
    EXPECT_EQ(_oamGetKeyword(handle, "Name", nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(_oamGetKeyword(handle, "Nothing", nullptr, 0), OAMERR_NOT_FOUND);
    EXPECT_TRUE(recorder.Calls("GetKeyword").at(0).nullBuffer);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_P(Forwarding, PassesAWriting) {
    const unsigned long handle = OpenQuietly(kWrite);
    Script([](ModuleScript& script) {
        script.setKeyword = [](unsigned long, const char*, const char*) { return 0u; };
    });
    EXPECT_EQ(_oamSetKeyword(handle, "Any.Keyword", "any value"), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines(), ElementsAre("rec.bpi SetKeyword(Any.Keyword, any value)"));
    EXPECT_EQ(recorder.Calls().at(0).handle, handle);
    EXPECT_EQ(DbGetKeyword(handle, "Any.Keyword"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_P(Forwarding, PassesAQualifiersReading) {
    const unsigned long handle = OpenQuietly(kRead);
    char buffer[55];
    EXPECT_EQ(_oamGetQualifier(handle, "Name", "Type", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "Object");
    EXPECT_THAT(recorder.Lines(), ElementsAre("rec.bpi GetQualifier(Name, Type, 55)"));
    EXPECT_EQ(recorder.Calls().at(0).handle, handle);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_P(Forwarding, AnswersTheDefaultOfAQualifierThatThePluginDoesNotKnow) {
    const unsigned long handle = OpenQuietly(kRead);
    EXPECT_EQ(GetQualifier(handle, "Name", "Max"), Is("32767"));
    EXPECT_EQ(recorder.Count("GetQualifier"), 1u);
    Script([](ModuleScript& script) {
        script.getQualifier = [](unsigned long, const char*, const char*, char*, unsigned) {
            return 0xB1u;
        };
    });
    EXPECT_EQ(GetQualifier(handle, "Name", "Max"), Fails(0xB1));
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_P(Forwarding, AnswersThePluginsOwnCodes) {
    const unsigned long handle = OpenQuietly(kWrite);
    Script([](ModuleScript& script) {
        script.getKeyword = [](unsigned long, const char*, char*, unsigned) { return 0xB2u; };
        script.setKeyword = [](unsigned long, const char*, const char*) { return 0xB3u; };
    });
    EXPECT_EQ(GetKeyword(handle, "Name"), Fails(0xB2));
    EXPECT_EQ(_oamSetKeyword(handle, "Keyword", "value"), 0xB3u);
    Script([](ModuleScript& script) {
        script.getKeyword = [](unsigned long, const char*, char*, unsigned) -> unsigned {
            return OAMERR_NOT_FOUND;
        };
    });
    EXPECT_EQ(GetKeyword(handle, "Name"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_P(Forwarding, RefusesAnOpeningWithThePluginsCode) {
    Script([](ModuleScript& script) {
        script.openObject = [](unsigned long, unsigned) { return 0xB4u; };
    });
    unsigned long handle = 0;
    EXPECT_EQ(_oamOpenObject(kClient, GetParam(), &handle, kWrite), 0xB4u);
    Script([](ModuleScript& script) { script.openObject = nullptr; });
    const unsigned long open = Open(Object(), kWrite);
    EXPECT_EQ(_oamCloseObject(open), OAM_SUCCESS);
    EXPECT_EQ(recorder.Count("CloseObject"), 1u);
}

TEST_P(Forwarding, DropsTheChangesWhenThePluginRefusesTheClosing) {
    EXPECT_EQ(DbChange(Object(), "Remark", "old"), OAM_SUCCESS);
    const unsigned long handle = Open(Object(), kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "Remark", "new"), OAM_SUCCESS);
    Script([](ModuleScript& script) { script.closeObject = [](unsigned long) { return 0xB5u; }; });
    alerts.Clear();
    EXPECT_EQ(_oamCloseObject(handle), 0xB5u);
    EXPECT_THAT(alerts.Heard(), IsEmpty());
    EXPECT_EQ(StoredKeywordOf(Object(), "Remark"), Is("old"));
}

TEST_P(Forwarding, TakesWhatThePluginThrowsForAFailure) {
    const unsigned long handle = OpenQuietly(kWrite);
    Script([](ModuleScript& script) {
        script.openObject = [](unsigned long, unsigned) -> unsigned { throw 1; };
        script.closeObject = [](unsigned long) -> unsigned { throw 2; };
        script.getKeyword = [](unsigned long, const char*, char*, unsigned) -> unsigned {
            throw 3;
        };
        script.setKeyword = [](unsigned long, const char*, const char*) -> unsigned { throw 4; };
        script.getQualifier = [](unsigned long, const char*, const char*, char*,
                                 unsigned) -> unsigned { throw 5; };
    });
    EXPECT_EQ(GetKeyword(handle, "Name"), Fails(OAM_REASON_FAILED));
    EXPECT_EQ(GetQualifier(handle, "Name", "Type"), Fails(OAM_REASON_FAILED));
    EXPECT_EQ(_oamSetKeyword(handle, "Keyword", "value"), OAM_REASON_FAILED);
    EXPECT_EQ(_oamCloseObject(handle), OAM_REASON_FAILED);
    unsigned long other = 0;
    EXPECT_EQ(_oamOpenObject(kClient, GetParam(), &other, kRead), OAM_REASON_FAILED);
}

TEST_P(Forwarding, IsLeftOutByTheDatabasesOwnAccess) {
    const unsigned long handle = DbOpen(Object(), kProvider);
    EXPECT_EQ(DbGetKeyword(handle, "Name"), Is(Object()));
    EXPECT_EQ(_oamDbSetKeyword(handle, "Remark", "text"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetQualifier(handle, "Remark", "Type", "Integer"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_THAT(
        recorder.Lines({"OpenObject", "CloseObject", "GetKeyword", "SetKeyword", "GetQualifier"}),
        IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Each, Forwarding, testing::Values("Board A", kPlugin),
                         [](const auto& row) {
                             return std::string(row.param) == kPlugin ? "Plugin" : "Board";
                         });

class UnservedObject : public BoardTest, public testing::WithParamInterface<const char*> {};

TEST_P(UnservedObject, CannotBeOpenedButThroughTheDatabase) {
    home.WriteDataFile("ghost.xmo", DataFile(GetParam(), StandardEntries(GetParam(), "Unknown")));
    StartQuietly();
    unsigned long handle = 0;
    EXPECT_EQ(_oamOpenObject(kClient, GetParam(), &handle, kRead), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamOpenObject(kClient, GetParam(), &handle, kWrite), OAMERR_NOT_FOUND);
    EXPECT_EQ(StoredKeywordOf(GetParam(), "Name"), Is(GetParam()));
    EXPECT_THAT(recorder.Lines({"OpenObject"}), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Each, UnservedObject, testing::Values("Ghost", "ghost.bpi", "ghost.emc"),
                         [](const auto& row) {
                             const std::string name = row.param;
                             return name == "Ghost"       ? "Board"
                                    : name == "ghost.bpi" ? "Plugin"
                                                          : "Component";
                         });

class BoardNaming : public BoardTest {
  protected:
    void SetUp() override {
        BoardTest::SetUp();
        Configure("Board A");
        StartQuietly();
    }
};

constexpr unsigned kBadName = 7;

class BadBoardName : public BoardNaming, public testing::WithParamInterface<const char*> {};

TEST_P(BadBoardName, IsRefusedWithTheKeptCodeSevenBeforeThePluginIsAsked) {
    const unsigned long handle = Open("Board A", kWrite);
    recorder.Clear();
    EXPECT_EQ(_oamSetKeyword(handle, "Name", GetParam()), kBadName);
    EXPECT_EQ(_oamSetKeyword(handle, "nAmE", GetParam()), kBadName);
    EXPECT_THAT(recorder.Lines(), IsEmpty());
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("Board A"));
}

INSTANTIATE_TEST_SUITE_P(Each, BadBoardName,
                         testing::Values("", " ", " a", "a ", "a<b", "<", "a>b", ">", "a\\b",
                                         "\\"));

TEST_F(BoardNaming, MayHoldBlanksAndSignsInside) {
    for (const char* name : {"a b", "a/b", "100%s", "x", "a.b-c_d?e"}) {
        EXPECT_EQ(Change(BoardNames().at(0), "Name", name), OAM_SUCCESS) << name;
        EXPECT_THAT(BoardNames(), ElementsAre(name));
    }
}

TEST_F(BoardNaming, IsCheckedInTheKeywordNameOnly) {
    const unsigned long handle = Open("Board A", kWrite);
    Script([](ModuleScript& script) {
        script.setKeyword = [](unsigned long, const char*, const char*) { return 0u; };
    });
    EXPECT_EQ(_oamSetKeyword(handle, "Names", " <a> "), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(handle, "Driver.Name", " <a> "), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_F(BoardNaming, IsNotCheckedForAPluginsObject) {
    const unsigned long handle = Open(kPlugin, kWrite);
    Script([](ModuleScript& script) {
        script.setKeyword = [](unsigned long, const char*, const char*) { return 0u; };
    });
    recorder.Clear();
    EXPECT_EQ(_oamSetKeyword(handle, "Name", " <a> "), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines(), ElementsAre("rec.bpi SetKeyword(Name,  <a> )"));
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

}  // namespace

}  // namespace oam::test
