// Opening a busy object again and again, and closing what a departed client left open.
#include "base/database_lock.h"
#include "config_room.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr unsigned long kClient = 0x1234;
constexpr unsigned long kOther = 0x5678;

class ObjectAccess : public ConfigRoom {
  protected:
    ObjectAccess() { Start(); }

    unsigned long Open(unsigned long client, const char* name, unsigned mode) {
        unsigned long handle = 0;
        EXPECT_EQ(_oamOpenObject(client, name, &handle, mode), OAM_SUCCESS);
        return handle;
    }
    size_t Sleeps() { return doors.CallsOf({"zolSleep"}).size(); }
};

// ---- Busy objects

TEST_F(ObjectAccess, InternalOpenTriesTenTimesMoreOneSecondApart) {
    const unsigned long busy = Open(kClient, "Supervisor", kReadWrite);
    unsigned long handle = 42;
    EXPECT_EQ(OpenObject(OAM_INTERNAL_CLIENT, "Supervisor", &handle, 0), OAMERR_ACCESS_DENIED);
    EXPECT_THAT(doors.CallsOf({"zolSleep"}), ::testing::Each("zolSleep(1)"));
    EXPECT_EQ(Sleeps(), 10u);
    EXPECT_EQ(handle, 42u);
    doors.TakeCalls();
    EXPECT_EQ(_oamOpenObject(OAM_INTERNAL_CLIENT, "Supervisor", &handle, 0), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Sleeps(), 10u);
    doors.TakeCalls();
    EXPECT_EQ(_oamDbOpenObject("Supervisor", &handle, 0), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Sleeps(), 10u);
    doors.TakeCalls();
    EXPECT_EQ(OpenObject(kOther, "Supervisor", &handle, 0), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Sleeps(), 10u) << "other rooms open for any client with the same patience";
    EXPECT_EQ(_oamCloseObject(busy), OAM_SUCCESS);
}

TEST_F(ObjectAccess, ExternalClientIsToldAtOnce) {
    const unsigned long busy = Open(kClient, "Supervisor", kReadWrite);
    unsigned long handle = 42;
    EXPECT_EQ(_oamOpenObject(kOther, "Supervisor", &handle, 0), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(Sleeps(), 0u);
    EXPECT_EQ(_oamCloseObject(busy), OAM_SUCCESS);
}

TEST_F(ObjectAccess, WaitsWithTheManagerLockReleased) {
    const unsigned long busy = Open(kClient, "Supervisor", kReadWrite);
    doors.On("zolSleep", [&] {
        EXPECT_EQ(ManagerMutex::Depth(), 0);
        return Sleeps() == 3 ? _oamCloseObject(busy) : OAM_SUCCESS;
    });
    unsigned long handle = 0;
    EXPECT_EQ(_oamDbOpenObject("Supervisor", &handle, kReadWrite), OAM_SUCCESS);
    EXPECT_EQ(Sleeps(), 3u);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
}

TEST_F(ObjectAccess, DoesNotWaitUnderItsOwnManagerLock) {
    const unsigned long busy = Open(kClient, "Supervisor", kReadWrite);
    {
        const ManagerGuard hold;
        unsigned long handle = 0;
        EXPECT_EQ(_oamDbOpenObject("Supervisor", &handle, 0), OAMERR_ACCESS_DENIED);
        EXPECT_EQ(Sleeps(), 0u) << "nobody could close the object meanwhile";
    }
    EXPECT_EQ(_oamCloseObject(busy), OAM_SUCCESS);
}

TEST_F(ObjectAccess, OnlyABusyObjectIsTriedAgain) {
    unsigned long handle = 0;
    EXPECT_EQ(_oamDbOpenObject("None", &handle, 0), OAMERR_NOT_FOUND);
    home.WriteDataFile("Super.xmo", "spoiled");
    EXPECT_EQ(_oamDbOpenObject("Supervisor", &handle, 0), OAMERR_FILE_READ_ERROR);
    EXPECT_EQ(_oamOpenObject(OAM_INTERNAL_CLIENT, nullptr, &handle, 0), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamOpenObject(OAM_INTERNAL_CLIENT, "Supervisor", nullptr, 0), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamDbOpenObject("Supervisor", nullptr, 0), OAMERR_NOT_FOUND);
    EXPECT_EQ(Sleeps(), 0u);
}

// ---- The alert behind a close

TEST_F(ObjectAccess, ModificationIsToldAfterTheLockIsReleased) {
    int depth = -1;
    doors.On("AlertNotify", [&] {
        depth = ManagerMutex::Depth();
        return OAM_SUCCESS;
    });
    EXPECT_EQ(_oamCloseObject(Open(kClient, "Supervisor", kReadWrite)), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"AlertNotify"}),
                ElementsAre("AlertNotify(OAMEVN_MODIFIED, 0, Supervisor, )"));
    EXPECT_EQ(depth, 0);
}

TEST_F(ObjectAccess, OtherClosesTellNoModification) {
    EXPECT_EQ(_oamCloseObject(Open(kClient, "Supervisor", 0)), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject_WOAN(Open(kClient, "Supervisor", kReadWrite)), OAM_SUCCESS);
    EXPECT_EQ(CloseObject(Open(kClient, "Supervisor", kReadWrite)), OAM_SUCCESS);
    doors.Answer("BoardIDsValidateChanges", oam_result(9));
    EXPECT_EQ(_oamCloseObject(Open(kClient, "Supervisor", kReadWrite)), oam_result(9));
    EXPECT_THAT(doors.CallsOf({"AlertNotify"}), IsEmpty());
}

// ---- Departed clients

std::string DanglingLine(unsigned long handle, const char* object, unsigned long client) {
    char line[256];
    std::snprintf(line, sizeof line,
                  "Closing dangling open handle 0x%08lx on object \"%s\" by client 0x%08lx.\n",
                  handle, object, client);
    return line;
}

TEST_F(ObjectAccess, EachDanglingHandleIsToldAndClosed) {
    const unsigned long first = Open(kClient, "Supervisor", 0);
    const unsigned long second = Open(kClient, "Supervisor", 0);
    const unsigned long other = Open(kOther, "Supervisor", 0);
    const unsigned long third = Open(kClient, "Supervisor", 0);
    EXPECT_EQ(OpenObjectsCleanup(kClient), OAM_SUCCESS);
    EXPECT_EQ(doors.DebugText().substr(doors.DebugText().find("Closing")),
              DanglingLine(first, "Supervisor", kClient) +
                  DanglingLine(second, "Supervisor", kClient) +
                  DanglingLine(third, "Supervisor", kClient));
    ASSERT_EQ(openObjects().Count(), 1);
    EXPECT_EQ(openObjects().At(0)->client, kOther);
    EXPECT_EQ(_oamCloseObject(other), OAM_SUCCESS);
}

TEST_F(ObjectAccess, DanglingReadWriteHandleIsCommittedAndTold) {
    const unsigned long handle = Open(kClient, "Supervisor", kReadWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "AutoStartEnabled", "yes"), OAM_SUCCESS);
    EXPECT_EQ(OpenObjectsCleanup(kClient), OAM_SUCCESS);
    EXPECT_TRUE(g_bAutoStartEnabled);
    EXPECT_EQ(doors.CallsOf({"AlertNotify"}).back(), "AlertNotify(OAMEVN_MODIFIED, 0, Supervisor, )");
}

TEST_F(ObjectAccess, LastFailureOfTheCleanupIsAnswered) {
    EXPECT_EQ(CreateObject("Board 1", nullptr), OAM_SUCCESS);
    EXPECT_EQ(CreateObject("Board 2", nullptr), OAM_SUCCESS);
    Open(kClient, "Board 1", kReadWrite);
    Open(kClient, "Board 2", kReadWrite);
    int commits = 0;
    doors.On("BoardIDsValidateChanges",
             [&] { return ++commits == 1 ? oam_result(9) : OAM_SUCCESS; });
    EXPECT_EQ(OpenObjectsCleanup(kClient), oam_result(9));
    EXPECT_EQ(openObjects().Count(), 0);
}

TEST_F(ObjectAccess, HandlesThatAReceiverClosesMeanwhileAreNotTouchedAgain) {
    EXPECT_EQ(CreateObject("Board 1", nullptr), OAM_SUCCESS);
    Open(kClient, "Supervisor", kReadWrite);
    const unsigned long later = Open(kClient, "Board 1", 0);
    doors.On("AlertNotify", [&] {
        doors.On("AlertNotify", nullptr);
        return _oamCloseObject(later);
    });
    EXPECT_EQ(OpenObjectsCleanup(kClient), OAM_SUCCESS);
    EXPECT_EQ(openObjects().Count(), 0);
}

TEST_F(ObjectAccess, CleanupEndsWhereThereIsANewHandleAfterEach) {
    Open(kClient, "Supervisor", kReadWrite);
    int opened = 0;
    doors.On("AlertNotify", [&] {
        EXPECT_LT(++opened, 1000);
        Open(kClient, "Supervisor", kReadWrite);
        return OAM_SUCCESS;
    });
    EXPECT_EQ(OpenObjectsCleanup(kClient), OAM_SUCCESS);
    EXPECT_EQ(openObjects().Count(), 1);
}

TEST_F(ObjectAccess, InternalClientIsNeverCleanedUp) {
    const unsigned long handle = Open(OAM_INTERNAL_CLIENT, "Supervisor", 0);
    EXPECT_EQ(OpenObjectsCleanup(OAM_INTERNAL_CLIENT), OAM_SUCCESS);
    EXPECT_EQ(openObjects().Count(), 1);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_F(ObjectAccess, EndOfTheDatabaseForgetsEveryHandle) {
    Open(kClient, "Supervisor", 0);
    ConfigExit();
    EXPECT_EQ(openObjects().Count(), 0);
    EXPECT_EQ(openObjects().Capacity(), 0);
    unsigned long handle = 0;
    EXPECT_EQ(_oamDbOpenObject("Supervisor", &handle, 0), OAMERR_SERVER_NOT_RUNNING);
    ConfigExit();
}

}  // namespace
}  // namespace oam::test
