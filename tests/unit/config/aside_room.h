// An old configuration of two data files, the new one of an import, and where the old files lie.
#pragma once

#include <string>

#include "config/import_aside.h"
#include "doors/room_test.h"

namespace oam::test {

inline constexpr const char* kAside = "oam/cfg/import-aside";
inline constexpr const char* kRefused = "oam/cfg/import-refused";

class ImportAside : public RoomTest {
  protected:
    ImportAside() { WriteOld(); }

    void WriteOld() {
        home.Remove("oam/cfg");
        home.MakeDirectory("oam/cfg");
        home.WriteDataFile("Obj0.xmo", "old 0");
        home.WriteDataFile("Super.XMO", "old super");
        home.Write("oam/cfg/notes.txt", "mine");
    }
    void WriteNew() {
        home.Remove("oam/cfg/Obj0.xmo");
        home.Remove("oam/cfg/Super.XMO");
        home.WriteDataFile("Obj0.xmo", "new 0");
        home.WriteDataFile("Obj1.xmo", "new 1");
    }
    // The old configuration stands and nothing of an import is left.
    void ExpectOld() {
        EXPECT_THAT(home.List("oam/cfg"),
                    ::testing::ElementsAre("Obj0.xmo", "Super.XMO", "notes.txt"));
        EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), "old 0");
        EXPECT_EQ(home.ReadDataFile("Super.XMO"), "old super");
        EXPECT_EQ(home.Read("oam/cfg/notes.txt"), "mine");
    }
    // The old data files lie in a directory, whole.
    void ExpectOldIn(const std::string& where) {
        EXPECT_THAT(home.List(where), ::testing::ElementsAre("Obj0.xmo", "Super.XMO"));
        EXPECT_EQ(home.Read(where + "/Obj0.xmo"), "old 0");
        EXPECT_EQ(home.Read(where + "/Super.XMO"), "old super");
    }
    oam_result SetAside() { return setDataFilesAside(directory.c_str()); }
    bool RollBack() { return rollBackImport(directory.c_str()); }

    std::string directory = home.Path("oam/cfg");
};

}  // namespace oam::test
