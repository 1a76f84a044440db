// Clients' handles: alerts at the close, busy objects, departed clients.
#include <atomic>
#include <chrono>
#include <future>
#include <set>
#include <thread>

#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Clock = std::chrono::steady_clock;

class ObjectAccess : public ServiceTest {
  protected:
    static Said Modified(const std::string& object) { return {OAMEVN_MODIFIED, 0, object, ""}; }

    // The first answer of an open that may not wait.
    template <class Call>
    static oam_result AtOnce(Call open) {
        const auto begin = Clock::now();
        const oam_result result = open();
        EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5));
        return result;
    }
};

TEST_F(ObjectAccess, NamesAreFoundInAnyCase) {
    Start();
    const unsigned long handle = Open("SUPERvisor", kWrite);
    EXPECT_EQ(GetKeyword(handle, "NAME"), Is("Supervisor"));
    alerts.Clear();
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Modified("Supervisor"))) << "the object's own spelling";
}

TEST_F(ObjectAccess, OnlyAWritersCloseRaisesModified) {
    Start();
    for (unsigned mode : {kRead, kWrite, kProviderRead, kProvider}) {
        const unsigned long handle = Open("Supervisor", mode);
        alerts.Clear();
        EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
        EXPECT_EQ(alerts.Heard().size(), (mode & kWrite) != 0 ? 1u : 0u) << mode;
    }
}

TEST_F(ObjectAccess, CloseWithoutAlertRaisesNone) {
    Start();
    const unsigned long handle = Open("Supervisor", kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(_oamCloseObject_WOAN(handle), OAM_SUCCESS);
    EXPECT_THAT(alerts.All(), IsEmpty());
    EXPECT_EQ(KeywordOf("Supervisor", "AutoStopEnabled"), Is("Yes"))
        << "it is committed all the same";
}

TEST_F(ObjectAccess, DatabasesCloseRaisesNone) {
    Start();
    alerts.Clear();
    EXPECT_EQ(DbChange("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_THAT(alerts.All(), IsEmpty());
}

TEST_F(ObjectAccess, RefusedCloseRaisesNone) {
    AddPlugin("x.bpi");
    Start();
    const unsigned long handle = Open("x.bpi", kWrite);
    recorder.Script("x.bpi", [](ModuleScript& script) {
        script.closeObject = [](unsigned long) { return 0x99u; };
    });
    alerts.Clear();
    EXPECT_EQ(_oamCloseObject(handle), 0x99u);
    EXPECT_THAT(alerts.All(), IsEmpty());
}

TEST_F(ObjectAccess, ModifiedComesAfterTheLockIsReleased) {
    Start();
    const unsigned long handle = Open("Supervisor", kWrite);
    oam_result opened = OAMERR_BASE;
    alerts.AnswerWith([&](const Alert& alert) {
        if (alert.code == OAMEVN_MODIFIED) {
            // Another thread gets in while this one is still inside the close.
            auto other = std::async(std::launch::async, [] {
                unsigned long reader = 0;
                const oam_result result = _oamOpenObject(kClient, "Supervisor", &reader, kRead);
                return result == OAM_SUCCESS ? _oamCloseObject(reader) : result;
            });
            if (other.wait_for(kLimit) == std::future_status::ready) opened = other.get();
        }
        return 0u;
    });
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(opened, OAM_SUCCESS);
}

TEST_F(ObjectAccess, CallbacksFailureIsNotTheClosesResult) {
    Start();
    alerts.AnswerWith([](const Alert&) { return 0x55u; });
    EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
}

TEST_F(ObjectAccess, BusyObjectIsRefusedToAClientAtOnce) {
    Start();
    const unsigned long handle = Open("Supervisor", kWrite, 1);
    unsigned long other = 0;
    for (unsigned mode : {kRead, kWrite}) {
        EXPECT_EQ(AtOnce([&] { return _oamOpenObject(2, "Supervisor", &other, mode); }),
                  OAMERR_ACCESS_DENIED);
    }
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_F(ObjectAccess, InternalClientTriesElevenTimesASecondApart) {
    Start();
    const unsigned long handle = Open("Supervisor", kWrite);
    auto timed = [](auto open) {
        return std::async(std::launch::async, [open] {
            const auto begin = Clock::now();
            unsigned long other = 0;
            EXPECT_EQ(open(&other), OAMERR_ACCESS_DENIED);
            return Clock::now() - begin;
        });
    };
    auto client = timed([](unsigned long* other) {
        return _oamOpenObject(OAM_INTERNAL_CLIENT, "Supervisor", other, kRead);
    });
    auto database =
        timed([](unsigned long* other) { return _oamDbOpenObject("Supervisor", other, kWrite); });
    EXPECT_EQ(GetKeyword(handle, "Name"), Is("Supervisor")) << "they wait without the lock";
    for (auto* waiting : {&client, &database}) {
        const auto waited = waiting->get();
        EXPECT_GE(waited, std::chrono::seconds(10));
        EXPECT_LT(waited, std::chrono::seconds(20));
    }
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

TEST_F(ObjectAccess, WaitingOpenSucceedsWhenTheObjectIsClosed) {
    Start();
    const unsigned long handle = Open("Supervisor", kWrite);
    std::atomic<bool> started{false};
    auto waiting = std::async(std::launch::async, [&] {
        unsigned long other = 0;
        started = true;
        EXPECT_EQ(_oamOpenObject(OAM_INTERNAL_CLIENT, "Supervisor", &other, kWrite), OAM_SUCCESS);
        EXPECT_EQ(_oamCloseObject(other), OAM_SUCCESS);
    });
    auto database = std::async(std::launch::async, [&] {
        unsigned long other = 0;
        EXPECT_EQ(_oamDbOpenObject("Supervisor", &other, kRead), OAM_SUCCESS);
        EXPECT_EQ(_oamDbCloseObject(other), OAM_SUCCESS);
    });
    while (!started) std::this_thread::yield();
    EXPECT_EQ(_oamSetKeyword(handle, "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    waiting.get();
    database.get();
    EXPECT_EQ(KeywordOf("Supervisor", "AutoStopEnabled"), Is("Yes"));
}

TEST_F(ObjectAccess, UnknownObjectIsNotWaitedFor) {
    Start();
    unsigned long handle = 0;
    EXPECT_EQ(AtOnce([&] { return _oamDbOpenObject("Nobody", &handle, kRead); }), OAMERR_NOT_FOUND);
    EXPECT_EQ(AtOnce([&] { return _oamOpenObject(OAM_INTERNAL_CLIENT, "Nobody", &handle, kRead); }),
              OAMERR_NOT_FOUND);
}

TEST_F(ObjectAccess, OpenInsideAPluginsEntryIsRefusedAtOnceWhenItWouldHaveToWait) {
    std::vector<unsigned> results;
    AddPlugin("x.bpi", [&](ModuleScript& script) {
        script.setKeyword = [&](unsigned long, const char*, const char*) {
            unsigned long other = 0;
            results.push_back(
                AtOnce([&] { return _oamDbOpenObject("Supervisor", &other, kRead); }));
            results.push_back(AtOnce(
                [&] { return _oamOpenObject(OAM_INTERNAL_CLIENT, "Supervisor", &other, kRead); }));
            return 0u;
        };
    });
    Start();
    const unsigned long busy = Open("Supervisor", kWrite);
    const unsigned long handle = Open("x.bpi", kWrite);
    EXPECT_EQ(_oamSetKeyword(handle, "Key", "value"), OAM_SUCCESS);
    EXPECT_THAT(results, ElementsAre(OAMERR_ACCESS_DENIED, OAMERR_ACCESS_DENIED));
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(busy), OAM_SUCCESS);
}

TEST_F(ObjectAccess, DepartedClientsHandlesAreAllClosed) {
    for (const char* file : {"a.bpi", "b.bpi", "c.bpi"}) AddPlugin(file);
    Start();
    // Two of the client's in a row, one of another's in between, another two.
    Open("Supervisor", kRead, 5);
    Open("a.bpi", kRead, 5);
    const unsigned long others = Open("Supervisor", kRead, 6);
    Open("b.bpi", kRead, 5);
    Open("c.bpi", kRead, 5);
    EXPECT_EQ(_oamClientExit(5), OAM_SUCCESS);
    for (const char* object : {"a.bpi", "b.bpi", "c.bpi"}) {
        EXPECT_EQ(Change(object, "Name", object), OAM_SUCCESS) << object << " is closed";
    }
    unsigned long writer = 0;
    EXPECT_EQ(_oamOpenObject(5, "Supervisor", &writer, kWrite), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(GetKeyword(others, "Name"), Is("Supervisor")) << "the other client's stays open";
    EXPECT_EQ(_oamCloseObject(others), OAM_SUCCESS);
    EXPECT_EQ(_oamOpenObject(5, "Supervisor", &writer, kWrite), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(writer), OAM_SUCCESS);
}

TEST_F(ObjectAccess, DepartedClientsChangesAreCommitted) {
    Start();
    const unsigned long handle = Open("Supervisor", kWrite, 5);
    EXPECT_EQ(_oamSetKeyword(handle, "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(_oamClientExit(5), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Modified("Supervisor")));
    EXPECT_EQ(KeywordOf("Supervisor", "AutoStopEnabled"), Is("Yes"));
}

TEST_F(ObjectAccess, DepartedClientsRefusedChangeIsNoFailureAndTheNextHandleIsClosed) {
    AddPlugin("a.bpi");
    AddPlugin("b.bpi");
    Start();
    recorder.Script("a.bpi", [](ModuleScript& script) {
        script.closeObject = [](unsigned long) { return 0x99u; };
    });
    Open("a.bpi", kWrite, 5);
    Open("b.bpi", kWrite, 5);
    alerts.Clear();
    EXPECT_EQ(_oamClientExit(5), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Modified("b.bpi")));
    recorder.Script("a.bpi", [](ModuleScript& script) { script.closeObject = nullptr; });
    for (const char* object : {"a.bpi", "b.bpi"}) {
        EXPECT_EQ(Change(object, "Name", object), OAM_SUCCESS) << object << " is closed";
    }
}

TEST_F(ObjectAccess, InternalClientIsNeverCleanedUp) {
    Start();
    const unsigned long handle = Open("Supervisor", kRead, OAM_INTERNAL_CLIENT);
    const unsigned long database = DbOpen("Supervisor");
    EXPECT_EQ(_oamClientExit(OAM_INTERNAL_CLIENT), OAM_SUCCESS);
    EXPECT_EQ(GetKeyword(handle, "Name"), Is("Supervisor"));
    EXPECT_EQ(DbGetKeyword(database, "Name"), Is("Supervisor"));
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(database), OAM_SUCCESS);
}

TEST_F(ObjectAccess, ManyHandlesMayBeOpenAndCloseInAnyOrder) {
    Start();
    std::vector<unsigned long> handles;
    for (int i = 0; i < 100; ++i) handles.push_back(Open("Supervisor"));
    EXPECT_EQ(std::set<unsigned long>(handles.begin(), handles.end()).size(), 100u);
    for (size_t i = 0; i < 100; ++i) {
        const unsigned long handle = handles[i * 37 % 100];
        EXPECT_EQ(GetKeyword(handle, "Name"), Is("Supervisor"));
        EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    }
    EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
}

TEST_F(ObjectAccess, ThreadsMayReadAndWriteAtWill) {
    AddPlugin("x.bpi");
    Start();
    std::atomic<int> changes{0};
    std::vector<std::thread> threads;
    for (unsigned long client = 1; client <= 4; ++client) {
        threads.emplace_back([client, &changes] {
            for (int round = 0; round < 50; ++round) {
                unsigned long handle = 0;
                const char* object = round % 2 == 0 ? "Supervisor" : "x.bpi";
                const unsigned mode = round % 3 == 0 ? kWrite : kRead;
                const oam_result opened = _oamOpenObject(client, object, &handle, mode);
                if (opened != OAM_SUCCESS) {
                    EXPECT_EQ(opened, OAMERR_ACCESS_DENIED);
                    continue;
                }
                if (mode == kWrite && round % 2 == 0) {
                    EXPECT_EQ(_oamSetKeyword(handle, "AutoStopEnabled", "Yes"), OAM_SUCCESS);
                    ++changes;
                }
                EXPECT_EQ(GetKeyword(handle, "Name"), Is(object));
                EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_GT(changes, 0);
    EXPECT_EQ(KeywordOf("Supervisor", "AutoStopEnabled"), Is("Yes"));
}

}  // namespace
}  // namespace oam::test
