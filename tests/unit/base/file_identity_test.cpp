// What tells a file that has not changed.
#include "base/file_identity.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace oam::test {
namespace {

timespec inMilliseconds(long long distance) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const long long time = (now.tv_sec * 1'000LL + distance) * 1'000'000 + now.tv_nsec;
    return {static_cast<time_t>(time / 1'000'000'000), static_cast<long>(time % 1'000'000'000)};
}

struct stat written(long long modified, long long changed) {
    struct stat status {};
    status.st_dev = 3;
    status.st_ino = 4;
    status.st_size = 5;
    status.st_mtim = inMilliseconds(modified);
    status.st_ctim = inMilliseconds(changed);
    return status;
}

TEST(FileIdentity, IsOfNoFileAtFirst) {
    EXPECT_FALSE(FileIdentity().IsKnown());
    EXPECT_FALSE(FileIdentity().IsOf(written(-5000, -5000)));
}

TEST(FileIdentity, IsOfTheFileUntilAnythingOfItChanges) {
    const struct stat status = written(-5000, -4000);
    const FileIdentity identity = FileIdentity::Of(status);
    ASSERT_TRUE(identity.IsKnown());
    EXPECT_TRUE(identity.IsOf(status));
    const std::vector<std::function<void(struct stat*)>> changes = {
        [](struct stat* other) { ++other->st_dev; },
        [](struct stat* other) { ++other->st_ino; },
        [](struct stat* other) { ++other->st_size; },
        [](struct stat* other) { ++other->st_mtim.tv_sec; },
        [](struct stat* other) { other->st_mtim.tv_nsec ^= 1; },
        [](struct stat* other) { ++other->st_ctim.tv_sec; },
        [](struct stat* other) { other->st_ctim.tv_nsec ^= 1; }};
    for (const auto& change : changes) {
        struct stat other = status;
        change(&other);
        EXPECT_FALSE(identity.IsOf(other)) << &change - changes.data();
    }
}

// The clock of the file system may be a tick behind or, on another host, before ours.
TEST(FileIdentity, OfAFileThatChangedJustNowIsNotKnown) {
    for (const long long now : {0LL, 15LL}) {
        EXPECT_FALSE(FileIdentity::Of(written(now, -5000)).IsKnown()) << now;
        EXPECT_FALSE(FileIdentity::Of(written(-5000, now)).IsKnown()) << now;
    }
    for (const long long longAgo : {-5000LL, -500LL, -100LL, 500LL, 5000LL})
        EXPECT_TRUE(FileIdentity::Of(written(longAgo, longAgo)).IsKnown()) << longAgo;
}

}  // namespace
}  // namespace oam::test
