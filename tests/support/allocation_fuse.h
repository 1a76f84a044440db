// Makes one allocation fail, to prove what is left behind when memory runs out.
//
// A program that compiles allocation_fuse.cpp allocates through it and is linked with --wrap=calloc
// (oam_room_test sees to that): the fuse counts the calling thread's `new (std::nothrow)` and
// calloc. The throwing forms, which the service does not use, are left alone, so that the test
// itself and its stand-ins may allocate.
#pragma once

#include <gtest/gtest.h>

namespace oam::test {

class AllocationFuse {
  public:
    // The n-th allocation of this thread from now on fails, 1 being the next. One fuse at a time.
    explicit AllocationFuse(int nth) noexcept;
    ~AllocationFuse();
    AllocationFuse(const AllocationFuse&) = delete;
    AllocationFuse& operator=(const AllocationFuse&) = delete;

    bool HasBlown() const noexcept;
};

// Fails the first, the second, ... allocation of attempt() until one attempt needs no further one.
// After each that met a failure it calls check(what the attempt answered). What the last attempt
// answered is returned.
template <class Attempt, class Check>
auto FailEachAllocation(Attempt attempt, Check check) {
    constexpr int kMost = 1000;
    for (int nth = 1;; ++nth) {
        bool blown;
        auto answer = [&] {
            AllocationFuse fuse(nth);
            auto answered = attempt();
            blown = fuse.HasBlown();
            return answered;
        }();
        if (!blown) {
            EXPECT_GT(nth, 1) << "the attempt allocates nothing";
            return answer;
        }
        SCOPED_TRACE(::testing::Message() << "allocation " << nth << " failed");
        check(answer);
        if (nth == kMost) {
            ADD_FAILURE() << "no end of allocations";
            return answer;
        }
    }
}

}  // namespace oam::test
