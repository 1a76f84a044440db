// What a look costs with 10,000 objects, in files asked for and read.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "data_files.h"
#include "history/configuration_watch.h"

namespace oam::server::test {
namespace {

constexpr std::size_t kMany = 10000;

class ManyObjects : public ::testing::Test {
  protected:
    ManyObjects() {
        for (std::size_t i = 0; i < kMany; ++i)
            home.WriteDataFile(File(i), BoardFile("Board " + std::to_string(i)));
        files.AwaitSettled();
        EXPECT_EQ(watch.Look()->found.size(), kMany);
        before = watch.Done();
    }

    static std::string File(std::size_t number) { return "Obj" + std::to_string(number) + ".xmo"; }

    oam::test::Installation home;
    DataFiles files{home};
    ConfigurationWatch watch{files.Directory()};
    ConfigurationWatch::Work before;
};

}  // namespace

TEST_F(ManyObjects, AreReadOnce) {
    EXPECT_EQ(before.reads, kMany);
    EXPECT_EQ(before.listings, 1u);
    // The files, the directory before and after, and whether an import is under way.
    EXPECT_EQ(before.identities, kMany + 3);
}

TEST_F(ManyObjects, CostOneQuestionWhileNothingChanges) {
    for (int i = 0; i < 5; ++i) EXPECT_TRUE(watch.Look()->found.empty());
    EXPECT_EQ(watch.Done().identities, before.identities + 5);
    EXPECT_EQ(watch.Done().listings, before.listings);
    EXPECT_EQ(watch.Done().reads, before.reads);
}

TEST_F(ManyObjects, CostOneReadWhenOneChanges) {
    files.CommitBoard(File(1234), "Board 1234", {{"Number", "7"}});
    const auto news = watch.Look();
    ASSERT_EQ(news->found.size(), 1u);
    EXPECT_EQ(news->found[0].name, File(1234));
    EXPECT_EQ(watch.Done().reads, before.reads + 1);
    EXPECT_EQ(watch.Done().listings, before.listings + 1);
    EXPECT_EQ(watch.Done().identities, before.identities + kMany + 3);
}

}  // namespace oam::server::test
