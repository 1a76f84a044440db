// What the creation of a board asks of the plug-in, writes into the database and tells the clients;
// and what is left when a step fails.
#include <memory>
#include <stdexcept>

#include "boards.h"
#include "elsewhere.h"
#include "queries.h"
#include "support/file_limit.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class BoardCreation : public BoardTest {
  protected:
    void SetUp() override {
        BoardTest::SetUp();
        StartQuietly();
    }
    oam_result Create(const char* product = kProduct) {
        created_ = std::string(128, '\0');
        return _oamCreateBoard(product, created_.data(), 128);
    }
    std::string Created() const { return created_.c_str(); }
    void Refuse(const Recorder::Change& change) { Script(change); }
    // From the plug-in's CreateBoard on nothing can be written any more: the next save fails.
    oam_result CreateOnAFullDisk() {
        std::unique_ptr<FileSizeLimit> full;
        Script([&full](ModuleScript& script) {
            script.createBoard = [&full](const char*, const char*) {
                full = std::make_unique<FileSizeLimit>(0);
                return 0u;
            };
        });
        const oam_result created = Create();
        full.reset();
        Script([](ModuleScript& script) { script.createBoard = nullptr; });
        return created;
    }

    std::string created_;
};

TEST_F(BoardCreation, AsksThePluginThenStoresTheNumberThroughIt) {
    EXPECT_EQ(Create(), OAM_SUCCESS);
    EXPECT_EQ(Created(), "Card 0");
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi CreateBoard(Card 0, Card)", "rec.bpi OpenObject(1)",
                                     "rec.bpi SetKeyword(Number, 0)", "rec.bpi CloseObject()"));
}

TEST_F(BoardCreation, RaisesCreatedAndNothingElse) {
    EXPECT_EQ(Create(), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_CREATED, 0, "Card 0", ""}));
}

TEST_F(BoardCreation, WritesTheBoardsKeywords) {
    EXPECT_EQ(Create(), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"),
              DataFile("Card 0", {{"AutoStart", "No"},
                                  {"AutoStop", "No"},
                                  {"Clocking.HBus.ClockMode", ""},
                                  {"Driver.BoardId", ""},
                                  {"Driver.Name", ""},
                                  {"Eeprom.SerialNum", ""},
                                  {"Location.PCI.Bus", ""},
                                  {"Location.PCI.IOAddress", ""},
                                  {"Location.PCI.Slot", ""},
                                  {"Name", "Card 0"},
                                  {"Name?Description", "name of managed object"},
                                  {"Name?Type", "Object"},
                                  {"Number", "0"},
                                  {"Product", "Card"},
                                  {"Product?Type", "String"}}));
}

TEST_F(BoardCreation, LeavesWhatThePluginStoredAloneButForTheNumber) {
    Script([](ModuleScript& script) {
        script.boardKeywords = {{"Driver.Name", "drv"},      {"Driver.BoardId", "7"},
                                {"Location.PCI.Slot", "12"}, {"AutoStart", "Yes"},
                                {"Own.Keyword", "own"},      {"Number", "99"}};
    });
    EXPECT_EQ(Create(), OAM_SUCCESS);
    EXPECT_EQ(StoredKeywordOf("Card 0", "Driver.Name"), Is("drv"));
    EXPECT_EQ(StoredKeywordOf("Card 0", "AutoStart"), Is("Yes"));
    EXPECT_EQ(StoredKeywordOf("Card 0", "AutoStop"), Is("No"));
    EXPECT_EQ(StoredKeywordOf("Card 0", "Own.Keyword"), Is("own"));
    EXPECT_EQ(StoredKeywordOf("Card 0", "Number"), Is("0"));
    EXPECT_EQ(NumberOf("Card 0"), Are(0));
    EXPECT_EQ(DriverIDsOf("Card 0"), Is("drv|7"));
    EXPECT_EQ(BusSlotOf("Card 0"), Are(0, 12));
}

TEST_F(BoardCreation, FillsTheRecordFromTheDatabase) {
    EXPECT_EQ(Create(), OAM_SUCCESS);
    EXPECT_EQ(ProductOf("Card 0"), Is("Card"));
    EXPECT_EQ(ShelfSlotOf("Card 0"), Are(32, 32));
    EXPECT_EQ(MACAddressOf("Card 0", 0), Is(""));
}

TEST_F(BoardCreation, KnowsProductsInAnyCaseAndKeepsTheCallersSpelling) {
    EXPECT_EQ(Create("cARd"), OAM_SUCCESS);
    EXPECT_EQ(Created(), "cARd 0");
    EXPECT_EQ(Asked().at(0), "rec.bpi CreateBoard(cARd 0, cARd)");
}

TEST_F(BoardCreation, OfAnUnknownProductMakesNothing) {
    EXPECT_EQ(Create("Unheard of"), OAMERR_NOT_FOUND);
    EXPECT_THAT(Asked(), IsEmpty());
    EXPECT_THAT(BoardNames(), IsEmpty());
    EXPECT_THAT(Objects(), ElementsAre("rec.bpi", "Supervisor"));
    EXPECT_FALSE(home.Exists("oam/cfg/Obj0.xmo"));
}

TEST_F(BoardCreation, KeptCreatedAlertOfAnUnknownProduct) {
    EXPECT_EQ(Create("Unheard of"), OAMERR_NOT_FOUND);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_DELETED, 0, "Unheard of 0", ""},
                                            Said{OAMEVN_CREATED, 0, "Unheard of 0", ""}));
}

TEST_F(BoardCreation, EndsWithTheCodeOfThePluginThatRefusesIt) {
    Refuse([](ModuleScript& script) {
        script.createBoard = [](const char*, const char*) { return 0x71u; };
    });
    EXPECT_EQ(Create(), 0x71u);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi CreateBoard(Card 0, Card)"));
    EXPECT_THAT(BoardNames(), IsEmpty());
    EXPECT_THAT(Objects(), ElementsAre("rec.bpi", "Supervisor"));
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_DELETED, 0, "Card 0", ""},
                                            Said{OAMEVN_CREATED, 0, "Card 0", ""}));
}

TEST_F(BoardCreation, EndsWithAFailureWhenThePluginThrows) {
    Refuse([](ModuleScript& script) {
        script.createBoard = [](const char*, const char*) -> unsigned {
            throw std::runtime_error("refused");
        };
    });
    EXPECT_EQ(Create(), OAM_REASON_FAILED);
    EXPECT_THAT(BoardNames(), IsEmpty());
}

TEST_F(BoardCreation, IsUndoneWhenThePluginRefusesTheNumber) {
    Refuse([](ModuleScript& script) {
        script.setKeyword = [](unsigned long, const char*, const char*) { return 0x72u; };
    });
    EXPECT_EQ(Create(), 0x72u);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi CreateBoard(Card 0, Card)", "rec.bpi OpenObject(1)",
                                     "rec.bpi SetKeyword(Number, 0)", "rec.bpi CloseObject()",
                                     "rec.bpi DestroyBoard(Card 0)"));
    EXPECT_THAT(BoardNames(), IsEmpty());
    EXPECT_THAT(Objects(), ElementsAre("rec.bpi", "Supervisor"));
    EXPECT_FALSE(home.Exists("oam/cfg/Obj0.xmo"));
}

TEST_F(BoardCreation, IsUndoneWhenThePluginRefusesTheOpening) {
    Refuse([](ModuleScript& script) {
        script.openObject = [](unsigned long, unsigned) { return 0x73u; };
    });
    EXPECT_EQ(Create(), 0x73u);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi CreateBoard(Card 0, Card)", "rec.bpi OpenObject(1)",
                                     "rec.bpi DestroyBoard(Card 0)"));
    EXPECT_THAT(BoardNames(), IsEmpty());
}

// The last step answers with the code of the write; that of the closing is not looked at.
TEST_F(BoardCreation, SucceedsWhenThePluginRefusesTheClosing) {
    Refuse([](ModuleScript& script) {
        script.boardKeywords = {{"Location.PCI.Bus", "3"}};
        script.closeObject = [](unsigned long) { return 0x74u; };
    });
    EXPECT_EQ(Create(), OAM_SUCCESS);
    EXPECT_EQ(NumberOf("Card 0"), Are(0));
    EXPECT_EQ(BusSlotOf("Card 0"), Are(3, 0));
    EXPECT_EQ(StoredKeywordOf("Card 0", "Number"), Is("0"));
}

TEST_F(BoardCreation, RemovesTheRecordWhenTheDatabaseCannotBeWritten) {
    EXPECT_EQ(CreateOnAFullDisk(), OAMERR_FILE_WRITE_ERROR);
    EXPECT_THAT(BoardNames(), IsEmpty());
    EXPECT_EQ(ByNumber(0), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(Create(), OAM_SUCCESS);
    EXPECT_EQ(NumberOf("Card 0"), Are(0));
}

TEST_F(BoardCreation, NeedsRoomForTheName) {
    char name[32] = "untouched";
    EXPECT_EQ(_oamCreateBoard(kProduct, name, 16), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_THAT(Asked(), IsEmpty());
    EXPECT_EQ(_oamCreateBoard(kProduct, name, 17), OAM_SUCCESS);
    EXPECT_STREQ(name, "Card 0");
}

// A creation that fails at a database step, after the plug-in's, keeps the table lock.
class CreationLock : public BoardCreation {
  protected:
    static Numbers AskForNumber() { return NumberOf("Card 0"); }
};

TEST_F(CreationLock, KeptByAFailedCreationUntilTheThreadsNextQuery) {
    EXPECT_EQ(CreateOnAFullDisk(), OAMERR_FILE_WRITE_ERROR);
    Elsewhere<Numbers> other(AskForNumber);
    EXPECT_TRUE(other.IsHeldBack());
    EXPECT_EQ(ByNumber(0), Fails(OAMERR_NOT_FOUND));
    ASSERT_TRUE(other.IsDone());
    EXPECT_EQ(other.Get(), NoNumbers(OAMERR_NOT_FOUND));
}

TEST_F(CreationLock, KeptByAFailedCreationUntilTheThreadsNextCreation) {
    EXPECT_EQ(CreateOnAFullDisk(), OAMERR_FILE_WRITE_ERROR);
    Elsewhere<Answer> other([] { return ByProduct(kProduct); });
    EXPECT_TRUE(other.IsHeldBack());
    EXPECT_EQ(Create(), OAM_SUCCESS);
    ASSERT_TRUE(other.IsDone());
    (void)other.Get();  // before or after the new board is there
    EXPECT_EQ(ByProduct(kProduct), Is("Card 0"));
}

TEST_F(CreationLock, KeptByAFailedCreationIsGivenBackWhenItsThreadEnds) {
    Elsewhere<oam_result> creation([this] { return CreateOnAFullDisk(); });
    ASSERT_TRUE(creation.IsDone());
    EXPECT_EQ(creation.Get(), OAMERR_FILE_WRITE_ERROR);
    Elsewhere<Numbers> other(AskForNumber);
    ASSERT_TRUE(other.IsDone());
    EXPECT_EQ(other.Get(), NoNumbers(OAMERR_NOT_FOUND));
}

TEST_F(CreationLock, KeptByAFailedCreationDoesNotHinderItsOwnThread) {
    EXPECT_EQ(CreateOnAFullDisk(), OAMERR_FILE_WRITE_ERROR);
    EXPECT_EQ(Create(), OAM_SUCCESS);
    EXPECT_EQ(_oamStartBoard("Card 0", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(_oamDeleteBoard("Card 0"), OAM_SUCCESS);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
}

// The other thread waits for the table with the database in its hands; the first one then needs the
// database, not the table.
TEST_F(CreationLock, KeptByAFailedCreationIsGivenBackBeforeItsThreadWaitsForTheDatabase) {
    EXPECT_EQ(Create(), OAM_SUCCESS);
    Latch failed;
    Elsewhere<Answer> creation([&, this] {
        EXPECT_EQ(CreateOnAFullDisk(), OAMERR_FILE_WRITE_ERROR);
        failed.Wait();
        return KeywordOf("Supervisor", "Name");
    });
    ASSERT_TRUE(failed.WaitForArrival());
    Elsewhere<Answer> opening([] { return KeywordOf("Card 0", "Name"); });
    EXPECT_TRUE(opening.IsHeldBack());
    failed.Open();
    ASSERT_TRUE(creation.IsDone());
    EXPECT_EQ(creation.Get(), Is("Supervisor"));
    ASSERT_TRUE(opening.IsDone());
    EXPECT_EQ(opening.Get(), Is("Card 0"));
}

TEST_F(CreationLock, KeptTwiceIsGivenBackWhole) {
    EXPECT_EQ(CreateOnAFullDisk(), OAMERR_FILE_WRITE_ERROR);
    EXPECT_EQ(CreateOnAFullDisk(), OAMERR_FILE_WRITE_ERROR);
    EXPECT_EQ(ByNumber(0), Fails(OAMERR_NOT_FOUND));
    Elsewhere<Numbers> other(AskForNumber);
    ASSERT_TRUE(other.IsDone());
}

TEST_F(CreationLock, IsFreeAfterACreationThatThePluginRefused) {
    Refuse([](ModuleScript& script) {
        script.createBoard = [](const char*, const char*) { return 0x75u; };
    });
    EXPECT_EQ(Create(), 0x75u);
    Elsewhere<Numbers> other(AskForNumber);
    ASSERT_TRUE(other.IsDone());
}

TEST_F(CreationLock, IsFreeAfterTheSecondWriteWasRefused) {
    Refuse([](ModuleScript& script) {
        script.setKeyword = [](unsigned long, const char*, const char*) { return 0x76u; };
    });
    EXPECT_EQ(Create(), 0x76u);
    Elsewhere<Numbers> other(AskForNumber);
    ASSERT_TRUE(other.IsDone());
}

// The object stays open under the plug-in's own handle, so the service cannot open it to write.
TEST_F(CreationLock, KeptWhenThePluginKeepsTheObjectOpen) {
    unsigned long held = 0;
    Refuse([&held](ModuleScript& script) {
        script.createBoard = [&held](const char* board, const char*) -> unsigned {
            return _oamDbOpenObject(board, &held, kRead);
        };
    });
    EXPECT_EQ(Create(), OAMERR_ACCESS_DENIED);
    Elsewhere<Numbers> other(AskForNumber);
    EXPECT_TRUE(other.IsHeldBack());
    (void)ByNumber(0);
    ASSERT_TRUE(other.IsDone());
    EXPECT_EQ(_oamDbCloseObject(held), OAM_SUCCESS);
}

}  // namespace

}  // namespace oam::test
