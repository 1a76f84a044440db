// The table of open handles.
#include "config/open_objects.h"

#include <gmock/gmock.h>

#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

class OpenObjects : public ::testing::Test {
  protected:
    unsigned long Insert(unsigned long client = 1) {
        unsigned long handle = 0;
        EXPECT_EQ(table.Insert(client, &object, &handle), OAM_SUCCESS);
        return handle;
    }

    KOR_CMObject object{"Board 1", "Obj0.xmo"};
    CArrayPtrsToOpenMObject table{0, kTableGrowth};
};

TEST_F(OpenObjects, HandleIsTheAddressOfItsRecord) {
    const unsigned long handle = Insert(7);
    EXPECT_EQ(handle, reinterpret_cast<unsigned long>(table.At(0)));
    EXPECT_EQ(table.At(0)->client, 7u);
    EXPECT_EQ(getObjectFromHandle(handle), &object);
    EXPECT_STREQ(getNameFromHandle(handle), "Board 1");
}

TEST_F(OpenObjects, StandInOrderOfOpening) {
    const unsigned long first = Insert(9);
    const unsigned long second = Insert(3);
    const unsigned long third = Insert(6);
    int index = -1;
    EXPECT_TRUE(table.FindByHMObject(second, &index));
    EXPECT_EQ(index, 1);
    EXPECT_EQ(table.Remove(second), OAM_SUCCESS);
    EXPECT_TRUE(table.FindByHMObject(third, &index));
    EXPECT_EQ(index, 1);
    EXPECT_FALSE(table.FindByHMObject(1, &index));
    EXPECT_EQ(index, 2) << "the count when absent";
    EXPECT_EQ(table.Remove(1), OAMERR_NOT_FOUND);
    EXPECT_EQ(table.Remove(first), OAM_SUCCESS);
}

TEST_F(OpenObjects, GrowAndShrinkInStepsOfSixteen) {
    std::vector<unsigned long> handles;
    for (int i = 0; i < 17; ++i) {
        EXPECT_EQ(table.Capacity(), i == 0 ? 0 : 16);
        handles.push_back(Insert());
    }
    EXPECT_EQ(table.Capacity(), 32);
    for (unsigned long handle : handles) {
        EXPECT_EQ(table.Remove(handle), OAM_SUCCESS);
        EXPECT_EQ(table.Capacity(), table.Count() == 0 ? 0 : 16);
    }
}

TEST_F(OpenObjects, KeptTheInitialSizeIsIgnored) {
    const CArrayPtrsToOpenMObject other(100, 16);
    EXPECT_EQ(other.Capacity(), 0);
}

TEST_F(OpenObjects, OfOneObjectGoTogether) {
    KOR_CMObject other("Board 2", "Obj1.xmo");
    unsigned long kept = 0;
    Insert();
    EXPECT_EQ(table.Insert(1, &other, &kept), OAM_SUCCESS);
    Insert();
    table.RemoveAllOf(&object);
    EXPECT_EQ(table.Count(), 1);
    EXPECT_EQ(table.At(0)->object, &other);
}

TEST_F(OpenObjects, RemoveAllGivesEverythingBack) {
    for (int i = 0; i < 20; ++i) Insert();
    table.RemoveAll();
    EXPECT_EQ(table.Count(), 0);
    EXPECT_EQ(table.Capacity(), 0);
}

TEST_F(OpenObjects, AreAsTheyWereWhenThereIsNoMemoryForOneMore) {
    for (int i = 0; i < 16; ++i) Insert();
    unsigned long handle = 42;
    EXPECT_EQ(FailEachAllocation([&] { return table.Insert(1, &object, &handle); },
                                 [&](oam_result result) {
                                     EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_EQ(table.Count(), 16);
                                     EXPECT_EQ(table.Capacity(), 16);
                                     EXPECT_EQ(handle, 42u);
                                 }),
              OAM_SUCCESS);
}

TEST_F(OpenObjects, ClosedOneGoesAlsoWithoutMemoryForASmallerTable) {
    const unsigned long first = Insert();
    const unsigned long second = Insert();
    for (unsigned long handle : {first, second}) {
        const AllocationFuse fuse(1);
        EXPECT_EQ(table.Remove(handle), OAM_SUCCESS);
    }
    EXPECT_EQ(table.Count(), 0);
    EXPECT_EQ(table.Capacity(), 16) << "the slots are kept";
    Insert();
    const AllocationFuse fuse(1);
    table.RemoveAllOf(&object);
    EXPECT_TRUE(fuse.HasBlown());
    EXPECT_EQ(table.Count(), 0);
}

}  // namespace
}  // namespace oam::test
