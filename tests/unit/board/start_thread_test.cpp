// Threads that nobody waits for, and what happens when there can be none.
#include "board/start_thread.h"

#include <pthread.h>

#include <cerrno>
#include <future>

#include "board_room.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

struct Ran {
    std::promise<bool> isDetached;
};

void note(void* argument) {
    pthread_attr_t attributes;
    int state = PTHREAD_CREATE_JOINABLE;
    EXPECT_EQ(pthread_getattr_np(pthread_self(), &attributes), 0);
    EXPECT_EQ(pthread_attr_getdetachstate(&attributes, &state), 0);
    pthread_attr_destroy(&attributes);
    static_cast<Ran*>(argument)->isDetached.set_value(state == PTHREAD_CREATE_DETACHED);
}

TEST(StartThread, RunsTheFunctionOnADetachedThread) {
    Ran ran;
    EXPECT_EQ(startThread(&note, &ran), 0);
    EXPECT_TRUE(ran.isDetached.get_future().get());
    EXPECT_TRUE(WaitForThreads());
}

TEST(StartThread, FailsWhenThereCanBeNoThread) {
    Ran ran;
    const SystemFault fault("pthread_create", 1, EAGAIN);
    EXPECT_EQ(startThread(&note, &ran), -1);
    EXPECT_TRUE(fault.HasHappened());
}

TEST(StartThread, FailsWithoutMemory) {
    Ran ran;
    const AllocationFuse fuse(1);
    EXPECT_EQ(startThread(&note, &ran), -1);
    EXPECT_TRUE(fuse.HasBlown());
}

}  // namespace
}  // namespace oam::test
