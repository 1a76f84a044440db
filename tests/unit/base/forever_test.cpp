#include "base/forever.h"

#include <gtest/gtest.h>

namespace oam::test {
namespace {

int destroyed = 0;

struct Counted {
    Counted(int first, int second) : sum(first + second) {}
    ~Counted() { ++destroyed; }
    int sum;
};

TEST(Forever, MakesItsObjectAndNeverDestroysIt) {
    destroyed = 0;
    {
        Forever<Counted> held(2, 3);
        EXPECT_EQ(held.Get().sum, 5);
        held.Get().sum = 7;
        EXPECT_EQ(held.Get().sum, 7);
    }
    EXPECT_EQ(destroyed, 0);
}

}  // namespace
}  // namespace oam::test
