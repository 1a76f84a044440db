#include "store/numbers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "store/database.h"
#include "support/file_limit.h"
#include "support/installation.h"
#include "sync_door.h"

namespace oam::server {
namespace {

using test::Installation;
using test::Layout;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::uint64_t kBlock = Numbers::kBlock;
constexpr const char* kFile = "oamd.numbers";

std::uint64_t clockNow() {
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(
                                          std::chrono::system_clock::now().time_since_epoch())
                                          .count());
}

class NumbersFile : public testing::Test {
  protected:
    Installation place_{Layout::kBare};
    const std::string path_ = place_.Path(kFile);
};

TEST_F(NumbersFile, TheFirstStartIsNumberOneAndItsFirstAlertToo) {
    const Numbers numbers(path_, true);
    EXPECT_THAT(numbers.Trouble(), IsEmpty());
    EXPECT_EQ(numbers.Start(), 1u);
    EXPECT_EQ(numbers.LastAlert(), 0u);
    EXPECT_EQ(numbers.Reserved(), kBlock);
}

TEST_F(NumbersFile, AfterAKillAlertsGoOnBehindWhatWasReserved) {
    { const Numbers killed(path_, true); }
    const Numbers numbers(path_, false);
    EXPECT_EQ(numbers.Start(), 2u);
    EXPECT_EQ(numbers.LastAlert(), kBlock);
    EXPECT_EQ(numbers.Reserved(), 2 * kBlock);
}

TEST_F(NumbersFile, AfterAnOrderlyEndAlertsGoOnBehindTheLast) {
    {
        Numbers ended(path_, true);
        ended.Reserve(kBlock * 3);
        EXPECT_EQ(ended.Reserved(), kBlock * 3);
        ended.Reserve(17);
        EXPECT_EQ(ended.Reserved(), 17u);
    }
    const Numbers numbers(path_, false);
    EXPECT_THAT(numbers.Trouble(), IsEmpty());
    EXPECT_EQ(numbers.Start(), 2u);
    EXPECT_EQ(numbers.LastAlert(), 17u);
}

TEST_F(NumbersFile, IsOneLineThatAPersonCanRead) {
    Numbers numbers(path_, true);
    numbers.Reserve(42);
    EXPECT_THAT(place_.Read(kFile),
                testing::MatchesRegex("oamd 1 start 00000000000000000001 alert "
                                      "00000000000000000042 check [0-9a-f]+\n"));
    EXPECT_EQ(place_.Read(kFile).size(), 76u);
    EXPECT_EQ(place_.List("."), (std::vector<std::string>{kFile, "shm"})) << "and nothing beside";
}

TEST_F(NumbersFile, IsRewrittenInItsPlace) {
    Numbers numbers(path_, true);
    // No file may grow, as on a full disk.
    const test::FileSizeLimit limit(76);
    EXPECT_NO_THROW(numbers.Reserve(kBlock * 2));
    EXPECT_EQ(numbers.Reserved(), kBlock * 2);
}

TEST_F(NumbersFile, ANumberThatIsNotOnTheDiskIsNotReserved) {
    Numbers numbers(path_, true);
    const SyncDoor door([] { return EIO; });
    EXPECT_THROW(numbers.Reserve(kBlock * 2), StoreError);
    EXPECT_EQ(numbers.Reserved(), kBlock);
    const Numbers next(path_, false);
    EXPECT_THAT(next.Trouble(), HasSubstr("Input/output error"));
}

TEST_F(NumbersFile, AnyChangedByteMakesNumbersGoOnFromTheClock) {
    { const Numbers first(path_, true); }
    const std::string whole = place_.Read(kFile);
    std::uint64_t last = 0;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        SCOPED_TRACE("byte " + std::to_string(i));
        std::string spoiled = whole;
        spoiled[i] = spoiled[i] == '7' ? '8' : '7';
        place_.Write(kFile, spoiled);
        const std::uint64_t before = clockNow();
        const Numbers numbers(path_, false);
        EXPECT_THAT(numbers.Trouble(), HasSubstr(path_));
        EXPECT_GE(numbers.LastAlert(), before);
        EXPECT_GT(numbers.Start(), last);
        last = numbers.Start();
    }
    const Numbers next(path_, false);
    EXPECT_THAT(next.Trouble(), IsEmpty()) << "and the file is whole again";
    EXPECT_EQ(next.Start(), last + 1);
}

TEST_F(NumbersFile, AShortOrLongFileIsSpoiledToo) {
    { const Numbers first(path_, true); }
    const std::string whole = place_.Read(kFile);
    for (const std::string& bytes : {std::string(), whole.substr(0, 75), whole + "x"}) {
        place_.Write(kFile, bytes);
        const std::uint64_t before = clockNow();
        {
            const Numbers numbers(path_, false);
            EXPECT_THAT(numbers.Trouble(), HasSubstr("spoiled"));
            EXPECT_GE(numbers.LastAlert(), before);
        }
        EXPECT_THAT(Numbers(path_, false).Trouble(), IsEmpty());
    }
}

TEST_F(NumbersFile, ALostFileMakesNumbersGoOnFromTheClock) {
    const std::uint64_t before = clockNow();
    const Numbers numbers(path_, false);
    EXPECT_THAT(numbers.Trouble(), HasSubstr("No such file"));
    EXPECT_GE(numbers.LastAlert(), before);
    EXPECT_GE(numbers.Start(), before);
    EXPECT_EQ(numbers.Reserved(), numbers.LastAlert() + kBlock) << "and they are reserved";
}

TEST_F(NumbersFile, WithoutADiskNumbersComeFromTheClockAtEveryStart) {
    const std::string nowhere = place_.Path("none/oamd.numbers");
    Numbers first(nowhere, true);
    EXPECT_THAT(first.Trouble(), HasSubstr(nowhere));
    EXPECT_EQ(first.Reserved(), 0u);
    EXPECT_THROW(first.Reserve(first.LastAlert() + 1), StoreError);
    EXPECT_EQ(first.Reserved(), 0u);

    const Numbers second(nowhere, true);
    EXPECT_GT(second.Start(), first.Start());

    place_.MakeDirectory("none");
    first.Reserve(first.LastAlert() + 5);
    EXPECT_EQ(first.Reserved(), first.LastAlert() + 5);
    EXPECT_EQ(Numbers(nowhere, false).LastAlert(), first.LastAlert() + 5);
}

TEST_F(NumbersFile, AFileThatIsDeletedMeanwhileComesBack) {
    Numbers numbers(path_, true);
    place_.Remove(kFile);
    numbers.Reserve(500);
    EXPECT_EQ(Numbers(path_, false).LastAlert(), 500u);
}

TEST_F(NumbersFile, ALeftoverOfAKilledCreationIsNoHindrance) {
    place_.Write("oamd.numbers.new", "half a line");
    const Numbers numbers(path_, true);
    EXPECT_THAT(numbers.Trouble(), IsEmpty());
    EXPECT_FALSE(place_.Exists("oamd.numbers.new"));
}

TEST_F(NumbersFile, ALinkIsNotFollowed) {
    place_.Write("elsewhere", std::string(76, 'x'));
    std::filesystem::create_symlink(place_.Path("elsewhere"), path_);
    EXPECT_THAT(Numbers(path_, false).Trouble(), HasSubstr(path_));
    EXPECT_EQ(place_.Read("elsewhere"), std::string(76, 'x'));
}

}  // namespace
}  // namespace oam::server
