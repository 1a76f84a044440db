#include "korcore/shared_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <vector>

#include "child_process.h"
#include "nameless_files.h"
#include "shared_directory.h"
#include "support/file_limit.h"

namespace {

constexpr char kName[] = "segment";
constexpr size_t kSize = 10624;

bool fillWithA(void* data, size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    if (std::any_of(bytes, bytes + size, [](unsigned char byte) { return byte != 0; }))
        return false;
    std::memset(data, 'a', size);
    return true;
}

bool fillUnderLock(void* data, size_t size, void*) { return fillWithA(data, size); }

bool refuse(void*, size_t) { return false; }

class SharedFile : public SharedDirectory {
  protected:
    static std::string Contents(const KorSharedFile& file) {
        return {static_cast<const char*>(file.Data()), file.Size()};
    }
};

TEST_F(SharedFile, IsMadeWithExactlyItsSizeAndInitialised) {
    KorSharedFile file;
    EXPECT_FALSE(file.IsOpen());
    ASSERT_TRUE(file.Open(kName, kSize, fillWithA));
    EXPECT_TRUE(file.IsOpen());
    EXPECT_TRUE(file.WasCreated());
    EXPECT_TRUE(file.IsWhole());
    EXPECT_EQ(kSize, file.Size());
    EXPECT_EQ(std::string(kSize, 'a'), Contents(file));
    EXPECT_EQ(std::string(kSize, 'a'), ReadFile(kName));
    EXPECT_EQ(1U, FileCount());
    file.ClearCreated();
    EXPECT_FALSE(file.WasCreated());
}

TEST_F(SharedFile, IsAllZeroWithoutAnInitialiser) {
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, kSize, nullptr));
    EXPECT_EQ(std::string(kSize, '\0'), ReadFile(kName));
}

TEST_F(SharedFile, IsForOwnerAndGroupWhateverTheUmask) {
    for (const mode_t mask : {0077, 0000, 0777}) {
        const mode_t before = umask(mask);
        KorSharedFile file;
        EXPECT_TRUE(file.Open(kName, kSize, nullptr));
        umask(before);
        EXPECT_EQ(0660U, ModeOf(kName));
        ASSERT_EQ(0, unlink(PathOf(kName).c_str()));
    }
}

TEST_F(SharedFile, HasItsRoomReserved) {
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, 1 << 20, nullptr));
    struct stat status {};
    ASSERT_EQ(0, stat(PathOf(kName).c_str(), &status));
    EXPECT_GE(status.st_blocks * 512, 1 << 20);
}

TEST_F(SharedFile, IsSharedWithWhoAttachesIt) {
    KorSharedFile first, second;
    ASSERT_TRUE(first.Open(kName, kSize, nullptr));
    std::memcpy(first.Data(), "old", 4);
    ASSERT_TRUE(second.Open(kName, kSize, fillWithA));
    EXPECT_FALSE(second.WasCreated());
    EXPECT_STREQ("old", static_cast<char*>(second.Data()));
    std::memcpy(second.Data(), "new", 4);
    EXPECT_STREQ("new", static_cast<char*>(first.Data()));
    EXPECT_TRUE(first.IsSameFile(second));
    KorSharedFile other;
    EXPECT_FALSE(first.IsSameFile(other)) << "closed";
    EXPECT_FALSE(other.IsSameFile(first)) << "closed";
    ASSERT_TRUE(other.Open("other", kSize, nullptr));
    EXPECT_FALSE(first.IsSameFile(other));
    // Of another device.
    const std::string name = "oamtest" + Directory().substr(Directory().size() - 6);
    setenv("KOR_SHM_DIR", "/dev/shm", 1);
    ASSERT_TRUE(other.Open(name.c_str(), kSize, nullptr));
    EXPECT_FALSE(first.IsSameFile(other));
    EXPECT_EQ(0, unlink(("/dev/shm/" + name).c_str()));
}

TEST_F(SharedFile, StaysWhenItIsClosed) {
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, kSize, fillWithA));
    file.Close();
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.WasCreated());
    EXPECT_FALSE(file.IsWhole());
    EXPECT_EQ(nullptr, file.Data());
    EXPECT_EQ(0U, file.Size());
    file.Close();
    EXPECT_EQ(std::string(kSize, 'a'), ReadFile(kName));
}

TEST_F(SharedFile, ThatIsShorterIsGrownWithZeros) {
    WriteFile(kName, "head");
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, kSize, fillWithA));
    EXPECT_FALSE(file.WasCreated());
    EXPECT_EQ("head" + std::string(kSize - 4, '\0'), ReadFile(kName));
}

TEST_F(SharedFile, ThatIsLongerIsNotShrunk) {
    WriteFile(kName, std::string(2 * kSize, 'l'));
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, kSize, fillWithA));
    EXPECT_EQ(kSize, file.Size());
    EXPECT_EQ(std::string(2 * kSize, 'l'), ReadFile(kName));
}

TEST_F(SharedFile, ThatIsEmptyWasNeverCompletedAndIsMadeAnew) {
    WriteFile(kName, "");
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, kSize, fillWithA));
    EXPECT_TRUE(file.WasCreated());
    EXPECT_EQ(std::string(kSize, 'a'), ReadFile(kName));
    EXPECT_EQ(0660U, ModeOf(kName));
}

TEST_F(SharedFile, WhoseInitialisingFailsIsNotLeftBehind) {
    KorSharedFile file;
    EXPECT_FALSE(file.Open(kName, kSize, refuse));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(0U, FileCount());
}

TEST_F(SharedFile, WhoseMakerDiesIsMadeByTheNext) {
    ChildProcess maker([] {
        KorSharedFile file;
        return file.Open(kName, kSize, [](void*, size_t) -> bool { _exit(42); }) ? 1 : 2;
    });
    ASSERT_EQ(42, maker.Await());
    EXPECT_EQ(0U, FileCount()) << "nothing is left lying about";
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, kSize, fillWithA));
    EXPECT_TRUE(file.WasCreated());
    EXPECT_EQ(std::string(kSize, 'a'), ReadFile(kName));
}

TEST_F(SharedFile, IsMadeUnderANameBesideWhereItCannotBeMadeWithoutOne) {
    for (const Refused what : {Refused::kNamelessFiles, Refused::kNaming}) {
        const NamelessFilesRefused system(what);
        for (const bool leaveEmpty : {false, true}) {
            if (leaveEmpty) WriteFile(kName, "");
            KorSharedFile file;
            ASSERT_TRUE(file.Open(kName, kSize, fillWithA));
            EXPECT_TRUE(file.WasCreated());
            EXPECT_EQ(std::string(kSize, 'a'), ReadFile(kName));
            EXPECT_EQ(0660U, ModeOf(kName));
            KorSharedFile other;
            ASSERT_TRUE(other.Open(kName, kSize, refuse));
            EXPECT_FALSE(other.WasCreated());
        }
        KorSharedFile refused;
        EXPECT_FALSE(refused.Open("other", kSize, refuse));
        EXPECT_EQ(1U, FileCount());
        ASSERT_EQ(0, unlink(PathOf(kName).c_str()));
    }
}

TEST_F(SharedFile, IsInNobodysWayUnderTheNameBesideWhenItsMakerDies) {
    const NamelessFilesRefused system(Refused::kNamelessFiles);
    ChildProcess maker([] {
        KorSharedFile file;
        return file.Open(kName, kSize, [](void*, size_t) -> bool { _exit(42); }) ? 1 : 2;
    });
    ASSERT_EQ(42, maker.Await());
    EXPECT_EQ(1U, FileCount());
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, kSize, fillWithA));
    EXPECT_TRUE(file.WasCreated());
    EXPECT_EQ(std::string(kSize, 'a'), ReadFile(kName));
}

TEST_F(SharedFile, IsRefusedWhenThereIsNoRoom) {
    ChildProcess child([&] {
        const oam::test::FileSizeLimit limit(4096);
        KorSharedFile file;
        if (file.Open(kName, kSize, fillWithA) || file.IsOpen()) return 1;
        return file.Open("small", 4096, fillWithA) ? 0 : 2;
    });
    EXPECT_EQ(0, child.Await());
    EXPECT_EQ(1U, FileCount());
}

TEST_F(SharedFile, IsRefusedWhenItCannotBeGrown) {
    WriteFile(kName, "head");
    ChildProcess child([&] {
        const oam::test::FileSizeLimit limit(4096);
        KorSharedFile file;
        return file.Open(kName, kSize, nullptr) ? 1 : 0;
    });
    EXPECT_EQ(0, child.Await());
    EXPECT_EQ("head", ReadFile(kName));
}

TEST_F(SharedFile, OfNoSizeOrAnImpossibleOneIsRefused) {
    KorSharedFile file;
    EXPECT_FALSE(file.Open(kName, 0, nullptr));
    EXPECT_FALSE(file.Open(kName, ~size_t{0}, nullptr));
    EXPECT_FALSE(file.Open(kName, ~size_t{0} / 2, nullptr));
    EXPECT_EQ(0U, FileCount());
}

TEST_F(SharedFile, OfABadNameIsRefused) {
    KorSharedFile file;
    for (const std::string& name : {std::string(""), std::string("a/b"), std::string("../a"),
                                    std::string("."), std::string(".."), std::string(256, 'n')}) {
        EXPECT_FALSE(file.Open(name.c_str(), kSize, nullptr)) << name;
    }
    EXPECT_FALSE(file.Open(nullptr, kSize, nullptr));
    setenv("KOR_SHM_DIR", ("/" + std::string(5000, 'd')).c_str(), 1);
    EXPECT_FALSE(file.Open(kName, kSize, nullptr));
    // Just short enough itself, but not with what a file beside it adds.
    std::string deep;
    while (deep.size() < PATH_MAX - sizeof kName - 4) deep += "/d";
    setenv("KOR_SHM_DIR", deep.c_str(), 1);
    EXPECT_FALSE(file.Open(kName, kSize, nullptr));
}

TEST_F(SharedFile, IsRefusedWhereSomethingElseHasTheName) {
    KorSharedFile file;
    ASSERT_EQ(0, mkfifo(PathOf("pipe").c_str(), 0600));
    EXPECT_FALSE(file.Open("pipe", kSize, nullptr));
    ASSERT_EQ(0, mkdir(PathOf("directory").c_str(), 0700));
    EXPECT_FALSE(file.Open("directory", kSize, nullptr));
    WriteFile("target", std::string(kSize, 't'));
    ASSERT_EQ(0, symlink(PathOf("target").c_str(), PathOf("link").c_str()));
    EXPECT_FALSE(file.Open("link", kSize, nullptr));
    ASSERT_EQ(0, symlink(PathOf("nowhere").c_str(), PathOf("dangling").c_str()));
    EXPECT_FALSE(file.Open("dangling", kSize, nullptr));
    EXPECT_EQ(std::string(kSize, 't'), ReadFile("target"));
    EXPECT_EQ(5U, FileCount());
}

TEST_F(SharedFile, ThatWasCutShortIsNotWhole) {
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, kSize, nullptr));
    Cut(kName, kSize - 1);
    EXPECT_FALSE(file.IsWhole());
    Cut(kName, kSize + 1);
    EXPECT_TRUE(file.IsWhole());
}

TEST_F(SharedFile, ThatIsGivenUpCanStillBeTouched) {
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, kSize, fillWithA));
    Cut(kName, 0);
    file.GiveUp();
    EXPECT_FALSE(file.IsWhole());
    EXPECT_EQ(std::string(kSize, '\0'), Contents(file));
    KorSharedFile closed;
    closed.GiveUp();
    EXPECT_FALSE(closed.IsOpen());
}

TEST_F(SharedFile, IsWorkedOnUnderItsLock) {
    KorSharedFile file;
    EXPECT_FALSE(file.UnderLock(fillUnderLock, nullptr));
    ASSERT_TRUE(file.Open(kName, kSize, nullptr));
    EXPECT_TRUE(file.UnderLock(fillUnderLock, nullptr));
    EXPECT_FALSE(file.UnderLock(fillUnderLock, nullptr));
    EXPECT_EQ(std::string(kSize, 'a'), ReadFile(kName));
    Cut(kName, 1);
    EXPECT_FALSE(file.UnderLock([](void*, size_t, void*) { return true; }, nullptr));
}

TEST_F(SharedFile, IsNotAttachedWhileAnotherWorksUnderItsLock) {
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, kSize, nullptr));
    Baton working;
    ChildProcess worker([&] {
        KorSharedFile mine;
        const auto work = [](void* data, size_t, void* baton) {
            static_cast<Baton*>(baton)->Pass();
            // Time for the other to come in, were there no lock.
            usleep(20000);
            std::memcpy(data, "done", 5);
            return true;
        };
        return mine.Open(kName, kSize, nullptr) && mine.UnderLock(work, &working) ? 0 : 1;
    });
    ASSERT_TRUE(working.Await());
    KorSharedFile late;
    ASSERT_TRUE(late.Open(kName, kSize, nullptr));
    EXPECT_STREQ("done", static_cast<char*>(late.Data()));
    EXPECT_EQ(0, worker.Await());
}

TEST_F(SharedFile, IsMadeByExactlyOneOfManyAndSeenHalfMadeByNone) {
    for (int round = 0; round < 20; ++round) {
        const std::string name = kName + std::to_string(round);
        const bool leaveEmpty = round % 2 == 1;
        if (leaveEmpty) WriteFile(name, "");
        const auto openIt = [&] {
            KorSharedFile file;
            if (!file.Open(name.c_str(), kSize, fillWithA)) return 2;
            if (Contents(file) != std::string(kSize, 'a')) return 3;
            return file.WasCreated() ? 1 : 0;
        };
        std::vector<std::unique_ptr<ChildProcess>> others;
        for (int i = 0; i < 4; ++i) others.push_back(std::make_unique<ChildProcess>(openIt));
        int made = openIt();
        ASSERT_LE(made, 1);
        for (const auto& other : others) {
            const int result = other->Await();
            ASSERT_LE(result, 1);
            ASSERT_GE(result, 0);
            made += result;
        }
        EXPECT_EQ(1, made);
    }
    EXPECT_EQ(20U, FileCount());
}

TEST_F(SharedFile, LiesInTheDirectoryNamedAtEveryOpen) {
    ASSERT_EQ(0, mkdir(PathOf("second").c_str(), 0700));
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, kSize, nullptr));
    setenv("KOR_SHM_DIR", PathOf("second").c_str(), 1);
    ASSERT_TRUE(file.Open(kName, kSize, nullptr));
    EXPECT_TRUE(file.WasCreated());
    EXPECT_EQ(static_cast<off_t>(kSize), SizeOf(std::string("second/") + kName));
}

TEST_F(SharedFile, LiesInTheSystemsDirectoryWhenTheSettingIsRelativeEmptyOrMissing) {
    ASSERT_EQ(0, chdir(Directory().c_str()));
    ASSERT_EQ(0, mkdir("here", 0700));
    const std::string name = "oamtest" + Directory().substr(Directory().size() - 6);
    for (const char* setting : {"here", "./here", "", static_cast<const char*>(nullptr)}) {
        setting != nullptr ? setenv("KOR_SHM_DIR", setting, 1) : unsetenv("KOR_SHM_DIR");
        KorSharedFile file;
        ASSERT_TRUE(file.Open(name.c_str(), kSize, nullptr));
        EXPECT_EQ(0, unlink(("/dev/shm/" + name).c_str())) << (setting ? setting : "unset");
    }
    EXPECT_TRUE(std::filesystem::is_empty(PathOf("here")));
    ASSERT_EQ(0, chdir("/"));
}

TEST_F(SharedFile, IsNotInheritedByAnotherProgram) {
    KorSharedFile file;
    ASSERT_TRUE(file.Open(kName, kSize, nullptr));
    int open = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (std::filesystem::read_symlink(entry.path(), gone) != PathOf(kName)) continue;
        ++open;
        const int descriptor = std::stoi(entry.path().filename().string());
        EXPECT_NE(0, fcntl(descriptor, F_GETFD) & FD_CLOEXEC);
    }
    EXPECT_EQ(1, open);
}

}  // namespace
