// The queries that a board's plug-in answers: its buffer and its status.
#include "boards.h"
#include "elsewhere.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;

using ForwardedQueries = BoardTest;

TEST_F(ForwardedQueries, PassABufferOnToTheBoardsPlugin) {
    AddPluginFor("other.bpi", {"Other"});
    Configure("A");
    Configure("B", {{"Product", "Other"}});
    Start();
    recorder.Script("other.bpi", [](ModuleScript& script) {
        script.sendBuffer = [](const char*, const void*, unsigned) { return 0xA1u; };
    });
    recorder.Clear();
    const std::string bytes("x\0y", 3);
    EXPECT_EQ(_oamSendBuffer("A", bytes.data(), 3), OAM_SUCCESS);
    EXPECT_EQ(_oamSendBuffer("B", bytes.data(), 2), 0xA1u);
    const auto calls = recorder.Calls("SendBuffer");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].file, "rec.bpi");
    EXPECT_THAT(calls[0].arguments, ElementsAre("A", bytes));
    EXPECT_EQ(calls[0].thread, std::this_thread::get_id());
    EXPECT_EQ(calls[1].file, "other.bpi");
    EXPECT_THAT(calls[1].arguments, ElementsAre("B", bytes.substr(0, 2)));
}

TEST_F(ForwardedQueries, PassTheCallersOwnBufferOn) {
    Configure("A");
    Start();
    const char bytes[] = "abc";
    const void* passed = nullptr;
    Script([&passed](ModuleScript& script) {
        script.sendBuffer = [&passed](const char*, const void* buffer, unsigned) {
            passed = buffer;
            return 0u;
        };
    });
    EXPECT_EQ(_oamSendBuffer("A", bytes, 3), OAM_SUCCESS);
    EXPECT_EQ(passed, bytes);
}

TEST_F(ForwardedQueries, AskTheBoardsPluginForItsStatus) {
    Configure("A");
    Start();
    Script([](ModuleScript& script) {
        script.getBoardStatus = [](const char*, unsigned selector, int* status) {
            *status = -static_cast<int>(selector);
            return selector == 9 ? 0xA2u : 0u;
        };
    });
    recorder.Clear();
    int status = 0;
    EXPECT_EQ(_oamBoardGetStatus("A", 4, &status), OAM_SUCCESS);
    EXPECT_EQ(status, -4);
    EXPECT_EQ(_oamBoardGetStatus("A", 9, &status), 0xA2u);
    EXPECT_EQ(status, -9);
    EXPECT_THAT(recorder.Lines(),
                ElementsAre("rec.bpi GetBoardStatus(A, 4)", "rec.bpi GetBoardStatus(A, 9)"));
}

TEST_F(ForwardedQueries, ForwardWithoutALock) {
    Configure("A");
    Configure("B", {{"Location.PCI.Bus", "0"}});
    Start();
    Latch latch;
    Script([&latch](ModuleScript& script) {
        script.sendBuffer = [&latch](const char*, const void*, unsigned) {
            latch.Wait();
            return 0u;
        };
        script.getBoardStatus = [&latch](const char*, unsigned, int*) {
            latch.Wait();
            return 0u;
        };
    });
    Elsewhere<oam_result> sending([] { return _oamSendBuffer("A", "abc", 3); });
    Elsewhere<oam_result> asking([] {
        int status = 0;
        return _oamBoardGetStatus("A", 1, &status);
    });
    ASSERT_TRUE(latch.WaitForArrival(2));
    EXPECT_EQ(NumberOf("B"), Are(1));
    EXPECT_EQ(Change("B", "Location.PCI.Bus", "5"), OAM_SUCCESS);
    latch.Open();
    ASSERT_TRUE(sending.IsDone());
    ASSERT_TRUE(asking.IsDone());
    EXPECT_EQ(sending.Get(), OAM_SUCCESS);
    EXPECT_EQ(asking.Get(), OAM_SUCCESS);
}

TEST_F(ForwardedQueries, FailWhereThePluginThrows) {
    Configure("A");
    Start();
    Script([](ModuleScript& script) {
        script.sendBuffer = [](const char*, const void*, unsigned) -> unsigned { throw 1; };
        script.getBoardStatus = [](const char*, unsigned, int*) -> unsigned { throw 2; };
    });
    int status = 0;
    EXPECT_EQ(_oamSendBuffer("A", "abc", 3), OAM_REASON_FAILED);
    EXPECT_EQ(_oamBoardGetStatus("A", 1, &status), OAM_REASON_FAILED);
}

}  // namespace

}  // namespace oam::test
