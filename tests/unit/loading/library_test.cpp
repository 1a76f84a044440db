// Loading one library of "/lib" and looking its entries up.
#include <dlfcn.h>

#include <cstddef>

#include "doors/room_test.h"
#include "loading/module.h"
#include "small_module.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class Library : public RoomTest {
  protected:
    void* library = nullptr;
};

TEST_F(Library, IsLoadedFromTheLibraryDirectory) {
    const SmallModule module(home, "x.bpi");
    EXPECT_EQ(OpenLibrary(false, "x.bpi", &library), OAM_SUCCESS);
    EXPECT_EQ(library, module.Library());
    EXPECT_EQ(doors.DebugText(), "");
}

TEST_F(Library, ThatCannotBeLoadedIsToldWithTheLoadersText) {
    home.Write("lib/x.bpi", "this is no shared object");
    const std::string path = home.Path("lib/x.bpi");
    EXPECT_EQ(OpenLibrary(false, "x.bpi", &library), oam_result(0xf0027));
    EXPECT_THAT(doors.DebugText(), StartsWith("dlopen " + path + " fail: " + path + ": "));
    EXPECT_THAT(doors.DebugText(), ::testing::EndsWith("\n"));
}

TEST_F(Library, ThatIsMissingIsToldTheSameWay) {
    EXPECT_EQ(OpenLibrary(true, "x.emc", &library), oam_result(0xf0027));
    EXPECT_THAT(doors.DebugText(), HasSubstr("fail: "));
}

TEST_F(Library, PathOf127CharactersFitsAndOf128DoesNot) {
    const size_t directory = home.Path("lib/").size();
    const std::string longest(127 - directory, 'x');
    EXPECT_EQ(OpenLibrary(false, longest.c_str(), &library), kLoadFailed) << "it was looked for";
    EXPECT_EQ(OpenLibrary(false, (longest + "x").c_str(), &library), OAMERR_NOT_ENOUGH_MEMORY);
}

TEST_F(Library, DirectoryThatDoesNotFitIsTheSame) {
    home.MoveRootToLength(123);
    EXPECT_EQ(OpenLibrary(false, "x", &library), OAMERR_NOT_ENOUGH_MEMORY);
}

struct Slots {
    unsigned (*init)(const char*) = nullptr;
    unsigned (*testBoard)(const char*, unsigned) = nullptr;
    unsigned (*stopBoard)(const char*) = nullptr;
};

unsigned fallbackTest(const char*, unsigned) { return 42; }

class Binding : public RoomTest {
  protected:
    Slots slots;
};

TEST_F(Binding, PutsEachAddressIntoItsSlot) {
    const SmallModule module(home, "x.bpi");
    const EntryRow rows[] = {{"StopBoard", offsetof(Slots, stopBoard), nullptr},
                             {"Init", offsetof(Slots, init), nullptr}};
    EXPECT_EQ(BindEntries(module.Library(), rows, 2, &slots), OAM_SUCCESS);
    EXPECT_EQ(reinterpret_cast<void*>(slots.init), dlsym(module.Library(), "Init"));
    EXPECT_EQ(reinterpret_cast<void*>(slots.stopBoard), dlsym(module.Library(), "StopBoard"));
    EXPECT_EQ(slots.testBoard, nullptr);
}

TEST_F(Binding, PutsTheFallbackForAMissingEntry) {
    const SmallModule module(home, "x.bpi", "small_without_test_board");
    const EntryRow rows[] = {{"TestBoard", offsetof(Slots, testBoard),
                              reinterpret_cast<void (*)()>(&fallbackTest)}};
    EXPECT_EQ(BindEntries(module.Library(), rows, 1, &slots), OAM_SUCCESS);
    EXPECT_EQ(slots.testBoard, &fallbackTest);
}

TEST_F(Binding, PrefersTheModulesOwnEntryToTheFallback) {
    const SmallModule module(home, "x.bpi");
    const EntryRow rows[] = {{"TestBoard", offsetof(Slots, testBoard),
                              reinterpret_cast<void (*)()>(&fallbackTest)}};
    EXPECT_EQ(BindEntries(module.Library(), rows, 1, &slots), OAM_SUCCESS);
    EXPECT_NE(slots.testBoard, &fallbackTest);
}

TEST_F(Binding, StopsAtTheFirstMissingEntryWithoutFallback) {
    const SmallModule module(home, "x.bpi", "small_without_test_board");
    const EntryRow rows[] = {{"Init", offsetof(Slots, init), nullptr},
                             {"TestBoard", offsetof(Slots, testBoard), nullptr},
                             {"StopBoard", offsetof(Slots, stopBoard), nullptr}};
    EXPECT_EQ(BindEntries(module.Library(), rows, 3, &slots), oam_result(ZOL_NO_SYMBOL));
    EXPECT_NE(slots.init, nullptr);
    EXPECT_EQ(slots.stopBoard, nullptr);
}

}  // namespace
}  // namespace oam::test
