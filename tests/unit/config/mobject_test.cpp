// The base class of objects: who may open it how, and what an opening allows.
#include "config_room.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr unsigned long kClient = 5;

class Object : public ConfigRoom {
  protected:
    unsigned long Open(unsigned mode) {
        unsigned long handle = 0;
        EXPECT_EQ(object.DbOpen(kClient, &handle, mode), OAM_SUCCESS);
        return handle;
    }
    // A refused opening; the handle stays untouched.
    void ExpectNoOpen(unsigned mode, oam_result expected = OAMERR_ACCESS_DENIED) {
        unsigned long handle = 42;
        EXPECT_EQ(object.DbOpen(kClient, &handle, mode), expected);
        EXPECT_EQ(handle, 42u);
    }

    KOR_CMObject object{"Thing", "Obj0.xmo"};
    char buffer[64] = "untouched";
};

TEST_F(Object, IsMadeClosedAndWithoutTouchingItsFile) {
    EXPECT_STREQ(object.Name(), "Thing");
    EXPECT_STREQ(object.DataFileName(), "Obj0.xmo");
    EXPECT_EQ(object.OpenCount(), 0);
    EXPECT_FALSE(object.IsReadWrite());
    EXPECT_FALSE(object.IsBoard());
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
    const KOR_CMObject nameless(nullptr, nullptr);
    EXPECT_STREQ(nameless.Name(), "");
    EXPECT_EQ(nameless.DataFileName(), nullptr);
    EXPECT_TRUE(nameless.IsComplete());
}

TEST_F(Object, IsNotCompleteWithoutMemoryForOneOfItsTexts) {
    for (int nth : {1, 2}) {
        const AllocationFuse fuse(nth);
        EXPECT_FALSE(KOR_CMObject("Thing", "Obj0.xmo").IsComplete()) << nth;
    }
    const AllocationFuse fuse(1);
    EXPECT_FALSE(object.SetDataFileName("Other.xmo"));
    EXPECT_FALSE(object.IsComplete());
}

TEST_F(Object, OpensWithoutAFileAndWritesOneAtTheLastReadWriteClose) {
    const unsigned long handle = Open(kProvide);
    EXPECT_EQ(object.Keywords().Count(), 0);
    EXPECT_EQ(object.DbSetKeyword("Name", "Thing"), OAM_SUCCESS);
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
    EXPECT_EQ(object.DbClose(handle, false), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), DataFile("Thing", {{"Name", "Thing"}}));
    EXPECT_EQ(object.Keywords().Count(), 0) << "in memory only while it is open";
}

TEST_F(Object, ReadersShareAndTheLastCloseSavesNothing) {
    const unsigned long first = Open(OAM_OPEN_READ);
    const unsigned long second = Open(OAM_OPEN_PROVIDER);
    EXPECT_NE(first, second);
    EXPECT_EQ(object.OpenCount(), 2);
    ExpectNoOpen(kReadWrite);
    ExpectNoOpen(kProvide);
    EXPECT_EQ(object.DbClose(first, false), OAM_SUCCESS);
    EXPECT_EQ(object.DbClose(second, false), OAM_SUCCESS);
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
}

TEST_F(Object, WriterIsAlone) {
    const unsigned long handle = Open(kReadWrite);
    ExpectNoOpen(OAM_OPEN_READ);
    ExpectNoOpen(OAM_OPEN_PROVIDER);
    ExpectNoOpen(kReadWrite);
    EXPECT_EQ(object.DbClose(handle, true), OAM_SUCCESS);
    EXPECT_EQ(object.DbClose(Open(OAM_OPEN_READ), false), OAM_SUCCESS);
}

TEST_F(Object, FurtherReaderDoesNotChangeTheMode) {
    const unsigned long first = Open(OAM_OPEN_PROVIDER);
    const unsigned long second = Open(OAM_OPEN_READ);
    bool provider = false;
    EXPECT_EQ(object.DbGetProviderMode(&provider), OAM_SUCCESS);
    EXPECT_TRUE(provider);
    EXPECT_EQ(object.DbClose(first, false), OAM_SUCCESS);
    EXPECT_EQ(object.DbClose(second, false), OAM_SUCCESS);
}

TEST_F(Object, DiscardDropsEveryChange) {
    home.WriteDataFile("Obj0.xmo", DataFile("Thing", {{"Key", "old"}}));
    const std::string before = home.ReadDataFile("Obj0.xmo");
    const unsigned long handle = Open(kReadWrite);
    EXPECT_EQ(object.DbSetKeyword("Key", "new"), OAM_SUCCESS);
    EXPECT_EQ(object.DbClose(handle, true), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), before);
    const unsigned long again = Open(OAM_OPEN_READ);
    EXPECT_THAT(EntriesOf(object), ElementsAre(Pair("Key", "old")));
    EXPECT_EQ(object.DbClose(again, false), OAM_SUCCESS);
}

TEST_F(Object, WriterWithoutProviderModeOnlyChangesValues) {
    home.WriteDataFile("Obj0.xmo", DataFile("Thing", {{"Key", "old"}}));
    const unsigned long handle = Open(kReadWrite);
    EXPECT_EQ(object.DbSetKeyword("key", "new"), OAM_SUCCESS);
    EXPECT_EQ(object.DbSetKeyword("Other", "x"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.DbRemoveKeyword("Key"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.DbSetQualifier("Key", "Max", "1"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.DbRemoveQualifier("Key", "Max"), OAMERR_ACCESS_DENIED);
    EXPECT_THAT(EntriesOf(object), ElementsAre(Pair("Key", "new")));
    EXPECT_EQ(object.DbClose(handle, true), OAM_SUCCESS);
}

TEST_F(Object, ReaderChangesNothingEvenAsAProvider) {
    const unsigned long handle = Open(OAM_OPEN_PROVIDER);
    EXPECT_EQ(object.DbSetKeyword("Key", "x"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.DbRemoveKeyword("Key"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.DbSetQualifier("Key", "Max", "1"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.SetKeyword(handle, "Key", "x"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.SetQualifier(handle, "Key", "Max", "1"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.DbGetKeyword("Key", buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(object.DbClose(handle, false), OAM_SUCCESS);
}

TEST_F(Object, ClosedAllowsNothing) {
    bool provider = true;
    EXPECT_EQ(object.DbClose(1, false), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.DbGetProviderMode(&provider), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.DbSetProviderMode(true), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.DbSetKeyword("Key", "x"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.DbGetKeyword("Key", nullptr, 0), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.DbGetQualifier("Key", "Max", nullptr, 0), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.SetKeyword(1, "Key", "x"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.GetKeyword(1, "Key", nullptr, 0), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.SetQualifier(1, "Key", "Max", "1"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.GetQualifier(1, "Key", "Max", nullptr, 0), OAMERR_ACCESS_DENIED)
        << "no default either";
}

TEST_F(Object, ClosedAllowsNothingAfterAWriterToo) {
    EXPECT_EQ(object.DbClose(Open(kProvide), true), OAM_SUCCESS);
    EXPECT_TRUE(object.IsReadWrite()) << "the mode of the last opening stays";
    EXPECT_EQ(object.DbSetKeyword("Key", "x"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(object.DbSetQualifier("Key", "Max", "1"), OAMERR_ACCESS_DENIED);
}

TEST_F(Object, ProviderModeIsSwitchedWhileItIsOpen) {
    const unsigned long handle = Open(kReadWrite);
    bool provider = true;
    EXPECT_EQ(object.DbGetProviderMode(&provider), OAM_SUCCESS);
    EXPECT_FALSE(provider);
    EXPECT_EQ(object.DbSetProviderMode(true), OAM_SUCCESS);
    EXPECT_EQ(object.DbSetKeyword("Key", "x"), OAM_SUCCESS);
    EXPECT_EQ(object.DbSetProviderMode(false), OAM_SUCCESS);
    EXPECT_EQ(object.DbSetKeyword("Other", "x"), OAMERR_ACCESS_DENIED);
    EXPECT_TRUE(object.IsReadWrite()) << "the other bit stays";
    EXPECT_EQ(object.DbClose(handle, true), OAM_SUCCESS);
}

TEST_F(Object, QualifiersLieBesideTheirKeyword) {
    const unsigned long handle = Open(kProvide);
    EXPECT_EQ(object.DbSetQualifier("Location.PCI.Bus", "Type", "Integer"), OAM_SUCCESS);
    EXPECT_THAT(EntriesOf(object), ElementsAre(Pair("Location.PCI.Bus?Type", "Integer")));
    EXPECT_EQ(object.DbGetQualifier("location.pci.bus", "TYPE", buffer, sizeof buffer),
              OAM_SUCCESS);
    EXPECT_STREQ(buffer, "Integer");
    EXPECT_EQ(object.DbGetQualifier("Location.PCI.Bus", "Max", buffer, sizeof buffer),
              OAMERR_NOT_FOUND);
    EXPECT_EQ(object.DbRemoveQualifier("Location.PCI.Bus", "Type"), OAM_SUCCESS);
    EXPECT_EQ(object.DbRemoveQualifier("Location.PCI.Bus", "Type"), OAMERR_NOT_FOUND);
    EXPECT_EQ(object.DbClose(handle, true), OAM_SUCCESS);
}

TEST_F(Object, QualifierHasItsDefaultOnlyThroughThePublicLayer) {
    const unsigned long handle = Open(kProvide);
    EXPECT_EQ(object.GetQualifier(handle, "Bus", "Max", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "32767");
    EXPECT_EQ(object.DbSetQualifier("Bus", "Max", "255"), OAM_SUCCESS);
    EXPECT_EQ(object.GetQualifier(handle, "Bus", "Max", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "255");
    EXPECT_EQ(object.GetQualifier(handle, "Bus", "Max", buffer, 3), OAMERR_NOT_ENOUGH_MEMORY)
        << "a failure other than a missing qualifier is no reason for the default";
    EXPECT_EQ(object.GetQualifier(handle, "Bus", "None", buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(object.DbClose(handle, true), OAM_SUCCESS);
}

// An object whose traps are noted and scripted as "TrapOpen" and so on.
class Trapped : public KOR_CMObject {
  public:
    using KOR_CMObject::KOR_CMObject;
    oam_result TrapOpen(unsigned long, unsigned mode) noexcept override {
        return Doors::The().Call("TrapOpen", mode);
    }
};

TEST_F(Object, RefusedByItsTrapIsClosedAgain) {
    Trapped trapped("Thing", "Obj0.xmo");
    doors.Answer("TrapOpen", oam_result(77));
    unsigned long handle = 42;
    EXPECT_EQ(trapped.Open(kClient, &handle, kProvide), oam_result(77));
    EXPECT_EQ(handle, 42u);
    EXPECT_EQ(trapped.OpenCount(), 0);
    EXPECT_EQ(openObjects().Count(), 0);
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty()) << "nothing is saved";
    EXPECT_THAT(doors.Calls(), ElementsAre("TrapOpen(3)"));
}

TEST_F(Object, StaysClosedWhenThereIsNoMemoryForAHandle) {
    home.WriteDataFile("Obj0.xmo", DataFile("Thing", {{"Key", "old"}}));
    EXPECT_EQ(FailEachAllocation(
                  [&] {
                      unsigned long handle = 0;
                      const oam_result result = object.DbOpen(kClient, &handle, kReadWrite);
                      if (result != OAM_SUCCESS) return result;
                      // A value may be lost without a word; the opening then counts.
                      return object.DbClose(handle, true);
                  },
                  [&](oam_result) {
                      EXPECT_EQ(object.OpenCount(), 0);
                      EXPECT_EQ(object.Keywords().Count(), 0);
                      EXPECT_EQ(object.Keywords().Capacity(), 0);
                  }),
              OAM_SUCCESS);
}

}  // namespace
}  // namespace oam::test
