// Going through a directory, and what the logs are told about each file.
#include "loading/listing.h"

#include <sys/stat.h>

#include <ctime>
#include <set>

#include "doors/room_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class Listing : public RoomTest {
  protected:
    std::multiset<std::string> Names(const char* extension) const {
        FileListing listing;
        EXPECT_TRUE(listing.Open(home.Path("lib").c_str()));
        std::multiset<std::string> names;
        while (const char* name = listing.Next(extension)) names.insert(name);
        return names;
    }
    // "<size> <date>" as a listing writes them.
    std::string DateOf(const std::string& path) const {
        struct stat status {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        char date[32];
        ctime_r(&status.st_mtime, date);
        return std::string(date).substr(0, 24);
    }
};

TEST_F(Listing, TakesFilesWhoseLastExtensionMatchesInAnyCase) {
    for (const char* name : {"x.bpi", "Y.BPI", "z.bpi.bak", "w.bak.Bpi", "bpi", ".bpi", "x.bp"}) {
        home.Write(std::string("lib/") + name, "");
    }
    EXPECT_THAT(Names(".bpi"), UnorderedElementsAre("x.bpi", "Y.BPI", "w.bak.Bpi", ".bpi"));
}

TEST_F(Listing, FindsNothingInAnEmptyDirectory) { EXPECT_THAT(Names(".bpi"), IsEmpty()); }

TEST_F(Listing, CannotOpenADirectoryThatIsNotThere) {
    FileListing listing;
    EXPECT_FALSE(listing.Open(home.Path("nowhere").c_str()));
}

TEST_F(Listing, HeadingIsThreeTexts) {
    ListingHeader("\nListing of things 100%s found:\n");
    EXPECT_EQ(doors.DebugText(),
              "\nListing of things 100%s found:\n"
              "\nFILENAME        SIZE  DATE                      ATTR\n"
              "--------        ----  ----                      ----\n");
}

TEST_F(Listing, AnnouncesAFileToTheSinkAndAsAnAlert) {
    home.Write("lib/x.bpi", std::string(1234, 'x'));
    const std::string path = home.Path("lib/x.bpi");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    AnnounceFile("Plug-in", path.c_str(), "x.bpi");
    const std::string date = DateOf(path);
    EXPECT_EQ(doors.DebugText(), "x.bpi           1234  " + date + "  RW \n");
    EXPECT_THAT(doors.Calls(), ElementsAre("AlertNotify(OAMEVN_ALERT, 0, Plug-in, => Loading " +
                                           path + " (1234 " + date + ")  )"));
}

TEST_F(Listing, ShowsTheOwnersPermissions) {
    const struct {
        mode_t mode;
        const char* letters;
    } rows[] = {{0777, "RWX\n"}, {0077, "   \n"}, {0400, "R  \n"}, {0300, " WX\n"}};
    for (const auto& row : rows) {
        home.Write("lib/x.bpi", "");
        const std::string path = home.Path("lib/x.bpi");
        ASSERT_EQ(chmod(path.c_str(), row.mode), 0);
        doors.Reset();
        AnnounceFile("Emc", path.c_str(), "x.bpi");
        EXPECT_THAT(doors.DebugText(), ::testing::EndsWith(std::string("  ") + row.letters));
        home.Remove("lib/x.bpi");
    }
}

TEST_F(Listing, DoesNotCutALongNameNorTakeItForAFormat) {
    const std::string name = "a_very_long_name_100%s%n.bpi";
    home.Write("lib/" + name, "x");
    AnnounceFile("Emc", home.Path("lib/" + name).c_str(), name.c_str());
    EXPECT_THAT(doors.DebugText(), ::testing::StartsWith(name + "       1  "));
}

TEST_F(Listing, AFileThatCannotBeLookedAtIsToldToTheSinkOnly) {
    const std::string path = home.Path("lib/gone.bpi");
    AnnounceFile("Emc", path.c_str(), "gone.bpi");
    EXPECT_EQ(doors.DebugText(), "Can't get file info for \"" + path + "\"\n");
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

}  // namespace
}  // namespace oam::test
