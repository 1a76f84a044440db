// Access to a component's object reaches the component, or the database.
#include "doors/config_door.h"
#include "doors/emc.h"
#include "doors/room_test.h"
#include "small_module.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;

class ComponentObject : public RoomTest {
  protected:
    ComponentObject() {
        ConfigDoor::The().Reset();
        EXPECT_EQ(EmcCommInit(), OAM_SUCCESS);
    }
    ~ComponentObject() override { EmcCommExit(); }

    SmallModule module{home, "x.emc"};
    char buffer[16] = "";
};

TEST_F(ComponentObject, EachAccessReachesItsEntry) {
    module.Answer(0x77);
    EXPECT_EQ(EmcOpen("X.EMC", 5, 1), oam_result(0x77));
    EXPECT_EQ(EmcSetKeyword("x.emc", 5, "Key", "v"), oam_result(0x77));
    EXPECT_EQ(EmcGetKeyword("x.emc", 5, "Key", buffer, sizeof buffer), oam_result(0x77));
    EXPECT_EQ(EmcGetQualifier("x.emc", 5, "Key", "Max", buffer, sizeof buffer), oam_result(0x77));
    EXPECT_EQ(EmcClose("x.emc", 5), oam_result(0x77));
    EXPECT_THAT(module.Calls(), EndsWith("OpenObject()\nSetKeyword(Key)\nGetKeyword(Key)\n"
                                         "GetQualifier(Key)\nCloseObject()\n"));
    module.Answer(0);
}

TEST_F(ComponentObject, UnknownNameIsNotFound) {
    EXPECT_EQ(EmcOpen("y.emc", 5, 1), OAMERR_NOT_FOUND);
    EXPECT_EQ(EmcSetKeyword("y.emc", 5, "Key", "v"), OAMERR_NOT_FOUND);
    EXPECT_EQ(EmcGetKeyword("y.emc", 5, "Key", buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(EmcGetQualifier("y.emc", 5, "Key", "Max", buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(EmcClose("y.emc", 5), OAMERR_NOT_FOUND);
}

TEST_F(ComponentObject, QualifierIsStoredInTheDatabaseWhateverTheName) {
    doors.Reset();
    EXPECT_EQ(EmcSetQualifier("not loaded.emc", 9, "Key", "Max", "255"), OAM_SUCCESS);
    doors.Answer("_oamDbSetQualifier", OAMERR_ACCESS_DENIED);
    EXPECT_EQ(EmcSetQualifier("x.emc", 9, "Key", "Max", "255"), OAMERR_ACCESS_DENIED);
    EXPECT_THAT(doors.Calls(), ElementsAre("_oamDbSetQualifier(9, Key, Max, 255)",
                                           "_oamDbSetQualifier(9, Key, Max, 255)"));
}

}  // namespace
}  // namespace oam::test
