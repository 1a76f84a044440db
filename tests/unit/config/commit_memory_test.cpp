// Closing a handle when memory runs out: refused or done, never half of both.
#include "config_room.h"
#include "noted_object.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

class CommitWithoutMemory : public ConfigRoom {
  protected:
    CommitWithoutMemory() { thing = &NotedObject::InsertInto(registry, "Thing", "Obj0.xmo"); }

    // The object with its old file, opened, and changed in memory.
    void Prepare(const char* newName) {
        home.WriteDataFile("Obj0.xmo", Old());
        OwnedText old;
        ASSERT_TRUE(old.Assign("Thing"));
        thing->SwapName(&old);
        ASSERT_EQ(registry.OpenObject(5, "Thing", &handle, kReadWrite), OAM_SUCCESS);
        ASSERT_EQ(thing->DbSetKeyword("Key", "new"), OAM_SUCCESS);
        ASSERT_EQ(thing->DbSetKeyword("Name", newName), OAM_SUCCESS);
    }
    static std::string Old() { return DataFile("Thing", {{"Key", "old"}, {"Name", "Thing"}}); }
    static std::string New(const std::string& name) {
        return DataFile(name, {{"Key", "new"}, {"Name", name}});
    }
    // Fails each allocation of a close in turn.
    void FailEach(const char* newName) {
        for (int nth = 1;; ++nth) {
            SCOPED_TRACE(nth);
            ASSERT_LT(nth, 100);
            Prepare(newName);
            bool blown;
            oam_result result;
            {
                const AllocationFuse fuse(nth);
                result = registry.CloseObject(handle);
                blown = fuse.HasBlown();
            }
            const bool done = result == OAM_SUCCESS;
            EXPECT_TRUE(done || result == OAMERR_NOT_ENOUGH_MEMORY ||
                        result == OAMERR_FILE_WRITE_ERROR);
            const std::string file = home.ReadDataFile("Obj0.xmo");
            // The file may be the new one when only its directory could not be synced.
            EXPECT_TRUE(file == New(newName) || (!done && file == Old())) << file;
            EXPECT_STREQ(thing->Name(), done ? newName : "Thing");
            EXPECT_THAT(home.List("oam/cfg"), ::testing::ElementsAre("Obj0.xmo"));
            EXPECT_EQ(thing->OpenCount(), 0);
            EXPECT_EQ(openObjects().Count(), 0) << "a handle that was closed";
            openObjects().RemoveAll();
            if (!blown) {
                EXPECT_TRUE(done);
                return;
            }
        }
    }

    CArrayPtrsToMObject registry{0, kTableGrowth};
    NotedObject* thing;
    unsigned long handle = 0;
};

TEST_F(CommitWithoutMemory, ChangeIsRefusedOrDone) { FailEach("Thing"); }

TEST_F(CommitWithoutMemory, RenameIsRefusedOrDone) { FailEach("Renamed"); }

}  // namespace
}  // namespace oam::test
