// Board, plug-in and component objects pass everything on to who serves them.
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Served {
    const char* object;
    const char* file;
};

constexpr Served kServed[] = {{"Prod 0", "x.bpi"}, {"x.bpi", "x.bpi"}, {"c.emc", "c.emc"}};

class Proxies : public ServiceTest {
  protected:
    void SetUp() override {
        AddPluginFor("x.bpi", {"Prod"});
        AddComponent("c.emc");
        Start();
        CreateBoard("Prod");
        recorder.Clear();
    }

    // Back to the defaults of the object entries.
    void Reset(const std::string& file) {
        recorder.Script(file, [](ModuleScript& script) {
            script.openObject = nullptr;
            script.closeObject = nullptr;
            script.setKeyword = nullptr;
            script.getKeyword = nullptr;
            script.getQualifier = nullptr;
        });
    }

    std::vector<RecordedCall> CallsOf(const std::string& file) {
        std::vector<RecordedCall> calls = recorder.Calls();
        std::erase_if(calls, [&](const RecordedCall& call) {
            return call.file != file || call.entry == "AlertReceive";
        });
        return calls;
    }
    std::vector<std::string> LinesOf(const std::string& file) {
        std::vector<std::string> lines;
        for (const std::string& line : recorder.Lines()) {
            if (line.starts_with(file + " ") && line.find("AlertReceive") == std::string::npos) {
                lines.push_back(line.substr(file.size() + 1));
            }
        }
        return lines;
    }
};

TEST_F(Proxies, PassOnEveryAccessWithItsHandleAndArguments) {
    for (const Served& served : kServed) {
        SCOPED_TRACE(served.object);
        recorder.Clear();
        const unsigned long handle = Open(served.object, kProvider);
        char buffer[40];
        EXPECT_EQ(_oamSetKeyword(handle, "Key", "value"), OAM_SUCCESS);
        EXPECT_EQ(_oamGetKeyword(handle, "Key", buffer, sizeof buffer), OAM_SUCCESS);
        EXPECT_STREQ(buffer, "value");
        EXPECT_EQ(_oamGetKeyword(handle, "Key", nullptr, 0), OAM_SUCCESS);
        EXPECT_EQ(_oamGetQualifier(handle, "Key", "Type", buffer, sizeof buffer), OAM_SUCCESS);
        EXPECT_STREQ(buffer, "String");
        EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
        EXPECT_THAT(
            LinesOf(served.file),
            ElementsAre("OpenObject(3)", "SetKeyword(Key, value)", "GetKeyword(Key, 40)",
                        "GetKeyword(Key, 0)", "GetQualifier(Key, Type, 40)", "CloseObject()"));
        for (const RecordedCall& call : CallsOf(served.file)) {
            EXPECT_EQ(call.handle, handle) << call.entry;
            EXPECT_EQ(call.thread, std::this_thread::get_id()) << call.entry;
        }
        EXPECT_TRUE(CallsOf(served.file)[3].nullBuffer);
    }
}

TEST_F(Proxies, HandleIsGoodForTheDatabaseInEveryEntry) {
    for (const Served& served : kServed) {
        SCOPED_TRACE(served.object);
        std::vector<Answer> seen;
        auto look = [&](unsigned long handle) {
            seen.push_back(DbGetKeyword(handle, "Name"));
            return 0u;
        };
        recorder.Script(served.file, [&](ModuleScript& script) {
            script.openObject = [look](unsigned long handle, unsigned) { return look(handle); };
            script.closeObject = look;
            script.setKeyword = [look](unsigned long handle, const char*, const char*) {
                return look(handle);
            };
            script.getKeyword = [look](unsigned long handle, const char*, char*, unsigned) {
                return look(handle);
            };
            script.getQualifier = [look](unsigned long handle, const char*, const char*, char*,
                                         unsigned) { return look(handle); };
        });
        const unsigned long handle = Open(served.object, kWrite);
        EXPECT_EQ(_oamSetKeyword(handle, "Key", "value"), OAM_SUCCESS);
        EXPECT_EQ(_oamGetKeyword(handle, "Key", nullptr, 0), OAM_SUCCESS);
        EXPECT_EQ(_oamGetQualifier(handle, "Key", "Type", nullptr, 0), OAM_SUCCESS);
        EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
        EXPECT_EQ(seen, std::vector<Answer>(5, Is(served.object)));
        Reset(served.file);
    }
}

TEST_F(Proxies, AnswerWithTheModulesOwnCodes) {
    for (const Served& served : kServed) {
        SCOPED_TRACE(served.object);
        const unsigned long handle = Open(served.object, kProvider);
        recorder.Script(served.file, [](ModuleScript& script) {
            script.setKeyword = [](unsigned long, const char*, const char*) { return 0x91u; };
            script.getKeyword = [](unsigned long, const char*, char*, unsigned) { return 0x92u; };
            script.getQualifier = [](unsigned long, const char*, const char*, char*, unsigned) {
                return 0x93u;
            };
            script.closeObject = [](unsigned long) { return 0x94u; };
            script.openObject = [](unsigned long, unsigned) { return 0x95u; };
        });
        EXPECT_EQ(_oamSetKeyword(handle, "Key", "value"), 0x91u);
        EXPECT_EQ(GetKeyword(handle, "Name"), Fails(0x92));
        EXPECT_EQ(GetQualifier(handle, "Name", "Type"), Fails(0x93));
        EXPECT_EQ(_oamCloseObject(handle), 0x94u);
        unsigned long refused = 77;
        EXPECT_EQ(_oamOpenObject(kClient, served.object, &refused, kRead), 0x95u);
        EXPECT_EQ(refused, 77u) << "the handle is not touched";
        Reset(served.file);
        EXPECT_EQ(_oamCloseObject(Open(served.object, kWrite)), OAM_SUCCESS)
            << "the refused opening has left the object closed";
    }
}

TEST_F(Proxies, NotFoundOfAKeywordReachesTheClient) {
    for (const Served& served : kServed) {
        EXPECT_EQ(KeywordOf(served.object, "Missing"), Fails(OAMERR_NOT_FOUND)) << served.object;
    }
}

TEST_F(Proxies, RefusedOpeningDropsWhatTheModuleStoredInIt) {
    for (const Served& served : kServed) {
        SCOPED_TRACE(served.object);
        recorder.Script(served.file, [](ModuleScript& script) {
            script.openObject = [](unsigned long handle, unsigned) {
                EXPECT_EQ(_oamDbSetKeyword(handle, "Half", "done"), OAM_SUCCESS);
                return 0x95u;
            };
        });
        unsigned long handle = 0;
        EXPECT_EQ(_oamOpenObject(kClient, served.object, &handle, kProvider), 0x95u);
        EXPECT_EQ(StoredKeywordOf(served.object, "Half"), Fails(OAMERR_NOT_FOUND));
        Reset(served.file);
    }
    EXPECT_THAT(recorder.Lines({"CloseObject"}), IsEmpty());
}

TEST_F(Proxies, ThrowingEntryIsAFailureOfThatEntry) {
    for (const Served& served : kServed) {
        SCOPED_TRACE(served.object);
        const unsigned long handle = Open(served.object, kWrite);
        recorder.Script(served.file, [](ModuleScript& script) {
            script.setKeyword = [](unsigned long, const char*, const char*) -> unsigned {
                throw std::runtime_error("set");
            };
            script.getKeyword = [](unsigned long, const char*, char*, unsigned) -> unsigned {
                throw 1;
            };
            script.getQualifier = [](unsigned long, const char*, const char*, char*,
                                     unsigned) -> unsigned { throw std::string("get"); };
            script.closeObject = [](unsigned long) -> unsigned { throw nullptr; };
        });
        EXPECT_EQ(_oamSetKeyword(handle, "Key", "value"), OAM_REASON_FAILED);
        EXPECT_EQ(GetKeyword(handle, "Name"), Fails(OAM_REASON_FAILED));
        EXPECT_EQ(GetQualifier(handle, "Name", "Type"), Fails(OAM_REASON_FAILED));
        EXPECT_EQ(_oamCloseObject(handle), OAM_REASON_FAILED);
        Reset(served.file);
    }
}

TEST_F(Proxies, ReaderMayNotSetAndTheModuleIsNotAsked) {
    for (const Served& served : kServed) {
        const unsigned long handle = Open(served.object, kRead);
        EXPECT_EQ(_oamSetKeyword(handle, "Name", served.object), OAMERR_ACCESS_DENIED);
        EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    }
    EXPECT_THAT(recorder.Lines({"SetKeyword"}), IsEmpty());
}

TEST_F(Proxies, ModuleDecidesWhatAWriterMayAdd) {
    recorder.Script("x.bpi", [](ModuleScript& script) {
        script.setKeyword = [](unsigned long handle, const char* keyword, const char* value) {
            bool provider = true;
            EXPECT_EQ(_oamDbGetProviderMode(handle, &provider), OAM_SUCCESS);
            EXPECT_FALSE(provider);
            EXPECT_EQ(_oamDbSetProviderMode(handle, true), OAM_SUCCESS);
            const unsigned set = _oamDbSetKeyword(handle, keyword, value);
            EXPECT_EQ(_oamDbSetProviderMode(handle, false), OAM_SUCCESS);
            return set;
        };
    });
    EXPECT_EQ(Change("Prod 0", "New", "value"), OAM_SUCCESS);
    EXPECT_EQ(StoredKeywordOf("Prod 0", "New"), Is("value"));
}

TEST_F(Proxies, OnlyBoardsNamesAreChecked) {
    for (const char* name : {"", " x", "x ", "a<b", "a>b", "a\\b"}) {
        const unsigned long board = Open("Prod 0", kWrite);
        EXPECT_EQ(_oamSetKeyword(board, "NAME", name), 7u) << name;
        EXPECT_EQ(_oamCloseObject(board), OAM_SUCCESS);
    }
    EXPECT_THAT(recorder.Lines({"SetKeyword"}), IsEmpty()) << "the plug-in is not asked";
    const unsigned long plugin = Open("x.bpi", kWrite);
    EXPECT_EQ(_oamSetKeyword(plugin, "Name", " a<b "), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(plugin, "Name", "x.bpi"), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(plugin), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"SetKeyword"}),
                ElementsAre("x.bpi SetKeyword(Name,  a<b )", "x.bpi SetKeyword(Name, x.bpi)"));
}

TEST_F(Proxies, CreationAndDeletionReachThePluginOfTheProduct) {
    EXPECT_EQ(CreateBoard("Prod"), "Prod 1");
    EXPECT_EQ(_oamDeleteBoard("Prod 1"), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"CreateBoard", "DestroyBoard"}),
                ElementsAre("x.bpi CreateBoard(Prod 1, Prod)", "x.bpi DestroyBoard(Prod 1)"));
}

TEST(UnservedObjects, AreNotFoundByClientsAndOpenToTheDatabase) {
    Installation home;
    home.WriteDataFile("a.xmo", DataFile("a.bpi", {{"Name", "a.bpi"}}));
    home.WriteDataFile("b.xmo", DataFile("b.emc", {{"Name", "b.emc"}}));
    home.WriteDataFile("c.xmo", DataFile("c", {{"Name", "c"}, {"Product", "Unknown"}}));
    ASSERT_EQ(_oamInit(), OAM_SUCCESS);
    for (const char* object : {"a.bpi", "b.emc", "c"}) {
        unsigned long handle = 77;
        EXPECT_EQ(_oamOpenObject(kClient, object, &handle, kRead), OAMERR_NOT_FOUND) << object;
        EXPECT_EQ(handle, 77u);
        EXPECT_EQ(StoredKeywordOf(object, "Name"), Is(object));
    }
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
}

}  // namespace
}  // namespace oam::test
