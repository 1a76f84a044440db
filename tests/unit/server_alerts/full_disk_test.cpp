// A disk without room is complained of once, costs no live alert and no number, and is forgotten
// when there is room again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include <fstream>

#include "alerts.h"
#include "daemon_parts.h"
#include "support/file_limit.h"
#include "unit/platform/child_process.h"
#include "unit/sim/waiting.h"

namespace oam::server {
namespace {

using test::Installation;
using test::Layout;

std::vector<std::uint64_t> numbersIn(const std::string& path) {
    std::vector<std::uint64_t> numbers;
    for (const StoredAlert& alert : ReadBook(path)) numbers.push_back(alert.sequence);
    return numbers;
}

// Publishes until the complaint comes, and some more; every alert is shown. The newest number.
std::uint64_t publishUntilItIsFull(DaemonParts& daemon) {
    const std::string text(200, 'x');
    EXPECT_TRUE(sim::becomesTrue([&] {
        daemon.Publish(text);
        return daemon.complaints.Count("cannot write the book") > 0;
    }));
    for (int i = 0; i < 1000; ++i) daemon.Publish(text);
    EXPECT_EQ(daemon.RunOperation("Board 1").state, OperationState::kDone);
    const std::uint64_t newest = daemon.ring.Given();
    EXPECT_TRUE(sim::becomesTrue([&] { return daemon.ring.Newest() == newest; }));
    return newest;
}

void expectRecovery(DaemonParts& daemon, std::uint64_t newest) {
    EXPECT_TRUE(daemon.AwaitWritten(newest));
    // A file system that fills up may find a last bit of room once more: each time is told, once.
    EXPECT_TRUE(sim::becomesTrue([&] { return daemon.complaints.All().size() % 2 == 0; }));
    const auto complaints = daemon.complaints.All();
    EXPECT_THAT(complaints, testing::SizeIs(testing::AllOf(testing::Ge(2u), testing::Le(6u))));
    for (std::size_t i = 0; i < complaints.size(); ++i)
        EXPECT_THAT(complaints[i], testing::HasSubstr(i % 2 == 0 ? "cannot write the book"
                                                                 : "can be written again"));
    const auto kept = numbersIn(daemon.BookPath());
    EXPECT_EQ(kept, Range(kept.at(0), newest));
    Database database(daemon.BookPath());
    Statement check(database, "PRAGMA integrity_check");
    ASSERT_TRUE(check.Step());
    EXPECT_EQ(check.Bytes(0), "ok");
}

PartSizes sizesOfAFlood() {
    PartSizes sizes;
    sizes.ring = 100000;
    return sizes;
}

TEST(FullDisk, FilesThatMayNotGrowAreComplainedOfOnceAndRecoveredFrom) {
    Installation place{Layout::kBare};
    DaemonParts daemon(place.Root(), sizesOfAFlood());
    std::uint64_t newest;
    {
        const test::FileSizeLimit limit(400000);
        newest = publishUntilItIsFull(daemon);
        EXPECT_LT(daemon.alertWriter.Written(), newest);
    }
    expectRecovery(daemon, newest);
}

TEST(FullDisk, AKillWhileTheDiskIsFullRepeatsNoNumber) {
    Installation place{Layout::kBare};
    Baton isFull;
    std::uint64_t shown = 0;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ChildProcess child([&] {
        PartSizes sizes;
        sizes.block = 1000;
        DaemonParts daemon(place.Root(), sizes);
        const test::FileSizeLimit limit(400000);
        const std::uint64_t newest = publishUntilItIsFull(daemon);
        if (write(ends[1], &newest, sizeof newest) != sizeof newest) return 1;
        isFull.Pass();
        pause();
        return 0;
    });
    ASSERT_TRUE(isFull.Await());
    child.Kill();
    ASSERT_EQ(read(ends[0], &shown, sizeof shown), static_cast<ssize_t>(sizeof shown));
    close(ends[0]);
    close(ends[1]);

    DaemonParts daemon(place.Root());
    EXPECT_GT(daemon.Publish("next"), shown);
    EXPECT_LT(daemon.ring.Newest(), shown + 3000) << "and it is the reserved one, not the clock's";
}

// Real lack of room, on a small file system of the child's own.
int runOnATinyFileSystem(const std::string& directory) {
    if (unshare(CLONE_NEWNS) != 0) return 77;
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return 77;
    if (mount("tiny", directory.c_str(), "tmpfs", 0, "size=8m") != 0) return 77;
    {
        PartSizes sizes = sizesOfAFlood();
        sizes.alerts = 5000;
        DaemonParts daemon(directory, sizes);
        daemon.Publish("one");
        if (!daemon.AwaitWritten(1)) return 1;
        {
            std::ofstream filler(directory + "/filler", std::ios::binary);
            while (filler << std::string(4096, 'f') << std::flush) {
            }
        }
        const std::uint64_t newest = publishUntilItIsFull(daemon);
        std::filesystem::remove(directory + "/filler");
        expectRecovery(daemon, newest);
    }
    return testing::Test::HasFailure() ? 1 : 0;
}

TEST(FullDisk, AFullFileSystemIsComplainedOfOnceAndRecoveredFrom) {
    Installation place{Layout::kBare};
    place.MakeDirectory("tiny");
    ChildProcess child([&] { return runOnATinyFileSystem(place.Path("tiny")); });
    const int result = child.Await();
    if (result == 77) GTEST_SKIP() << "mounting is not allowed here";
    EXPECT_EQ(result, 0);
}

}  // namespace
}  // namespace oam::server
