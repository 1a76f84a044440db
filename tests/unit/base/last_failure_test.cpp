#include "base/last_failure.h"

#include <gtest/gtest.h>

namespace oam::test {
namespace {

TEST(LastFailure, IsSuccessAsLongAsNothingFailed) {
    LastFailure result;
    result.Note(OAM_SUCCESS);
    EXPECT_EQ(result.Get(), OAM_SUCCESS);
}

TEST(LastFailure, KeepsTheLastFailureOverLaterSuccesses) {
    LastFailure result;
    result.Note(OAMERR_NOT_FOUND);
    result.Note(OAMERR_ACCESS_DENIED);
    result.Note(OAM_SUCCESS);
    EXPECT_EQ(result.Get(), OAMERR_ACCESS_DENIED);
}

}  // namespace
}  // namespace oam::test
