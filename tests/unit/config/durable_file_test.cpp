// Replacing a file wholly or not at all, whichever step fails.
#include "config/durable_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "config_room.h"
#include "doors/system_door.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;

class DurableFiles : public RoomTest {
  protected:
    DurableFiles() { umask_ = umask(022); }
    ~DurableFiles() override { umask(umask_); }

    std::string path = home.Path("oam/cfg/x.xmo");
    std::string Bytes() const { return home.Read("oam/cfg/x.xmo"); }
    std::vector<std::string> Names() const { return home.List("oam/cfg"); }

    // The whole of a replacement, as its users do it.
    oam_result Replace(const std::string& bytes, const std::string& target) {
        DurableFile file;
        if (auto failed = file.Begin(target.c_str())) return failed;
        return file.Finish(Write(file.Target(), bytes, file.IsBeside()));
    }
    oam_result Replace(const std::string& bytes) { return Replace(bytes, path); }

    static oam_result Write(const char* target, const std::string& bytes, bool sync) {
        FILE* stream = fopen(target, "we");
        if (stream == nullptr) return OAMERR_FILE_WRITE_ERROR;
        bool written = fputs(bytes.c_str(), stream) >= 0 && fflush(stream) == 0;
        if (sync) written = fsync(fileno(stream)) == 0 && written;
        return fclose(stream) == 0 && written ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
    }
    mode_t ModeOf(const std::string& file) const {
        struct stat status {};
        EXPECT_EQ(stat(file.c_str(), &status), 0);
        return status.st_mode & 07777;
    }

  private:
    mode_t umask_;
};

TEST_F(DurableFiles, AreWrittenBesideAndRenamedOver) {
    home.Write("oam/cfg/x.xmo", "old");
    DurableFile file;
    ASSERT_EQ(file.Begin(path.c_str()), OAM_SUCCESS);
    EXPECT_TRUE(file.IsBeside());
    EXPECT_EQ(file.Target(), path + ".saving");
    EXPECT_EQ(Write(file.Target(), "new", true), OAM_SUCCESS);
    EXPECT_EQ(Bytes(), "old") << "until the end";
    EXPECT_EQ(file.Finish(OAM_SUCCESS), OAM_SUCCESS);
    EXPECT_EQ(Bytes(), "new");
    EXPECT_THAT(Names(), ElementsAre("x.xmo"));
}

TEST_F(DurableFiles, FailedWritingLeavesTheOldOne) {
    home.Write("oam/cfg/x.xmo", "old");
    DurableFile file;
    ASSERT_EQ(file.Begin(path.c_str()), OAM_SUCCESS);
    EXPECT_EQ(Write(file.Target(), "half", true), OAM_SUCCESS);
    EXPECT_EQ(file.Finish(oam_result(9)), oam_result(9));
    EXPECT_EQ(Bytes(), "old");
    EXPECT_THAT(Names(), ElementsAre("x.xmo"));
}

TEST_F(DurableFiles, EachFailingStepLeavesTheOldOrTheNewOne) {
    for (const char* step : {"open", "fsync", "rename", "close"}) {
        for (int nth = 1;; ++nth) {
            SCOPED_TRACE(::testing::Message() << step << " " << nth);
            ASSERT_LT(nth, 20);
            home.Write("oam/cfg/x.xmo", "old");
            bool happened;
            oam_result result;
            {
                const SystemFault fault(step, nth, EIO);
                result = Replace("new");
                happened = fault.HasHappened();
            }
            const std::string bytes = Bytes();
            EXPECT_TRUE(bytes == "new" || (bytes == "old" && result == OAMERR_FILE_WRITE_ERROR))
                << bytes;
            EXPECT_THAT(Names(), ElementsAre("x.xmo")) << "nothing is left beside";
            if (!happened) break;
            if (std::string_view(step) != "close") {
                EXPECT_EQ(result, OAMERR_FILE_WRITE_ERROR);
            }
        }
    }
}

TEST_F(DurableFiles, DirectoryThatCannotBeSyncedIsAFailureUnlessItNeverCan) {
    // Only the disk itself can fail once the new file is in its place.
    for (const auto& [function, nth, error, expected, bytes] :
         {std::tuple("fsync", 2, EIO, OAMERR_FILE_WRITE_ERROR, "new"),
          {"fsync", 2, EINVAL, OAM_SUCCESS, "new"},
          {"open", 2, EIO, OAMERR_FILE_WRITE_ERROR, "old"},
          {"open", 2, EMFILE, OAMERR_FILE_WRITE_ERROR, "old"},
          {"open", 2, EACCES, OAM_SUCCESS, "new"}}) {
        home.Write("oam/cfg/x.xmo", "old");
        const SystemFault fault(function, nth, error);
        EXPECT_EQ(Replace("new"), expected) << function << " " << error;
        EXPECT_TRUE(fault.HasHappened());
        EXPECT_EQ(Bytes(), bytes) << function << " " << error;
    }
}

TEST_F(DurableFiles, DirectoryThatAllowsNoFileBesideHasItWrittenInPlace) {
    for (int error : {EACCES, EPERM, EROFS, ENAMETOOLONG}) {
        home.Write("oam/cfg/x.xmo", "old");
        const SystemFault fault("open", 1, error);
        DurableFile file;
        EXPECT_EQ(file.Begin(path.c_str()), OAM_SUCCESS);
        EXPECT_FALSE(file.IsBeside());
        EXPECT_EQ(file.Target(), path);
        EXPECT_EQ(file.Finish(oam_result(3)), oam_result(3));
        EXPECT_EQ(Bytes(), "old") << "Finish touches nothing then";
    }
}

TEST_F(DurableFiles, OtherFailureToBeginLeavesTheOldOne) {
    for (int error : {ENOSPC, EMFILE, EIO}) {
        home.Write("oam/cfg/x.xmo", "old");
        const SystemFault fault("open", 1, error);
        DurableFile file;
        EXPECT_EQ(file.Begin(path.c_str()), OAMERR_FILE_WRITE_ERROR);
        EXPECT_EQ(Bytes(), "old");
    }
}

TEST_F(DurableFiles, KeepTheirModeAndNewOnesFollowTheUmask) {
    EXPECT_EQ(Replace("first"), OAM_SUCCESS);
    EXPECT_EQ(ModeOf(path), 0644u);
    for (mode_t mode : {0600u, 0666u, 0444u}) {
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        EXPECT_EQ(Replace("again"), OAM_SUCCESS);
        EXPECT_EQ(ModeOf(path), mode);
    }
}

TEST_F(DurableFiles, SymbolicLinkStaysOneAndItsTargetIsWritten) {
    home.Write("target", "old");
    std::filesystem::create_symlink(home.Path("target"), path);
    EXPECT_EQ(Replace("new"), OAM_SUCCESS);
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_EQ(home.Read("target"), "new");
    EXPECT_THAT(Names(), ElementsAre("x.xmo"));
    EXPECT_TRUE(isWrittenInPlace(path.c_str()));
}

TEST_F(DurableFiles, DeviceIsWrittenInPlace) {
    EXPECT_EQ(Replace("gone", "/dev/null"), OAM_SUCCESS);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_TRUE(isWrittenInPlace("/dev/null"));
}

TEST_F(DurableFiles, OnlyWhatIsThereAndIrregularIsWrittenInPlace) {
    EXPECT_FALSE(isWrittenInPlace(path.c_str()));
    home.Write("oam/cfg/x.xmo", "");
    EXPECT_FALSE(isWrittenInPlace(path.c_str()));
    EXPECT_TRUE(isWrittenInPlace(home.Path("oam").c_str()));
}

TEST_F(DurableFiles, LinkLaidWhereTheFileBesideGoesIsNotFollowed) {
    home.Write("precious", "precious");
    home.Write("oam/cfg/x.xmo", "old");
    std::filesystem::create_symlink(home.Path("precious"), path + ".saving");
    EXPECT_EQ(Replace("new"), OAMERR_FILE_WRITE_ERROR);
    EXPECT_EQ(home.Read("precious"), "precious");
    EXPECT_EQ(Bytes(), "old");
}

TEST_F(DurableFiles, LeftOversOfADeathAreWrittenOver) {
    home.Write("oam/cfg/x.xmo.saving", std::string(1000, 'x'));
    EXPECT_EQ(Replace("new"), OAM_SUCCESS);
    EXPECT_EQ(Bytes(), "new");
    EXPECT_THAT(Names(), ElementsAre("x.xmo"));
}

TEST_F(DurableFiles, DirectoryOfAPathIsOpenedWhereThereIsOne) {
    EXPECT_TRUE(ContainingDirectory("/file").IsOpen()) << "the root";
    EXPECT_TRUE(ContainingDirectory(home.Path("oam/cfg/file").c_str()).IsOpen());
    EXPECT_FALSE(ContainingDirectory(home.Path("none/file").c_str()).IsOpen());
    const std::string longerThanAnyPath(5000, 'd');
    EXPECT_FALSE(ContainingDirectory((longerThanAnyPath + "/file").c_str()).IsOpen());
    EXPECT_FALSE(syncAll(home.Path("none").c_str()));
}

TEST_F(DurableFiles, PathWithoutASlashIsAFileHere) {
    const std::string before = std::filesystem::current_path();
    std::filesystem::current_path(home.Path("oam/cfg"));
    EXPECT_EQ(Replace("new", "plain"), OAM_SUCCESS);
    std::filesystem::current_path(before);
    EXPECT_EQ(home.Read("oam/cfg/plain"), "new");
}

TEST_F(DurableFiles, WithoutMemoryLeaveTheOldOrTheNewOne) {
    home.Write("oam/cfg/x.xmo", "old");
    EXPECT_EQ(FailEachAllocation([&] { return Replace("new"); },
                                 [&](oam_result result) {
                                     EXPECT_NE(result, OAM_SUCCESS);
                                     EXPECT_THAT(Bytes(), ::testing::AnyOf("old", "new"));
                                     EXPECT_THAT(Names(), ElementsAre("x.xmo"));
                                     home.Write("oam/cfg/x.xmo", "old");
                                 }),
              OAM_SUCCESS);
}

}  // namespace
}  // namespace oam::test
