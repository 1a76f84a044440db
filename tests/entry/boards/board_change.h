// The fixture of the tests that change boards: "Bravo", "Delta" and "Foxtrot" with the numbers 0, 1
// and 2, in a running service.
#pragma once

#include "boards.h"
#include "elsewhere.h"
#include "queries.h"

namespace oam::test {

class BoardChangeTest : public BoardTest {
  protected:
    void SetUp() override {
        BoardTest::SetUp();
        for (const char* board : {"Bravo", "Delta", "Foxtrot"}) Configure(board);
        StartQuietly();
    }
    // The commit keeps the table to itself; afterwards everybody gets at it again.
    void ExpectTableFree() {
        Elsewhere<Numbers> query([] { return NumberOf("Delta"); });
        ASSERT_TRUE(query.IsDone());
        EXPECT_EQ(query.Get().code, OAM_SUCCESS);
    }
};

}  // namespace oam::test
