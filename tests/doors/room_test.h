// The fixture of a room's unit tests: an installation directory of its own and doors that have
// noted nothing yet.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "doors/doors.h"
#include "support/installation.h"

namespace oam::test {

class RoomTest : public ::testing::Test {
  protected:
    RoomTest() { doors.Reset(); }
    ~RoomTest() override { doors.Reset(); }

    Installation home;
    Doors& doors = Doors::The();
};

}  // namespace oam::test
