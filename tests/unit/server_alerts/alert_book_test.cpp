#include "alerts/alert_book.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "alerts.h"
#include "support/installation.h"

namespace oam::server {
namespace {

using test::Installation;
using test::Layout;
using testing::IsEmpty;

class Book : public testing::Test {
  protected:
    Installation place_{Layout::kBare};
    Database database_{place_.Path("oamd.db")};
    AlertBook book_{database_};
};

TEST_F(Book, IsEmptyAtFirst) {
    EXPECT_EQ(book_.Newest(), 0u);
    const auto page = book_.Read(0, 10, {});
    EXPECT_THAT(page.alerts, IsEmpty());
    EXPECT_EQ(page.oldest, 0u);
    EXPECT_EQ(page.newest, 0u);
    EXPECT_EQ(page.scanned, 0u);
    EXPECT_FALSE(page.firstBehindGap);
}

TEST_F(Book, GivesBackWhatWasWritten) {
    StoredAlert alert = AlertOf(std::string("a\0b\xff", 4), 0xffffffff, "Bo'ard", 0x80000000);
    alert.operation = "1-2";
    alert.time = std::chrono::system_clock::time_point(std::chrono::microseconds(1234567890123456));
    book_.Write({Numbered(7, alert)}, 10);
    const auto page = book_.Read(6, 10, {});
    ASSERT_EQ(page.alerts.size(), 1u);
    const StoredAlert& read = page.alerts[0];
    EXPECT_EQ(read.sequence, 7u);
    EXPECT_EQ(read.time, alert.time);
    EXPECT_EQ(read.code, 0xffffffffu);
    EXPECT_EQ(read.severity, 0x80000000u);
    EXPECT_EQ(read.source, "Bo'ard");
    EXPECT_EQ(read.text, std::string("a\0b\xff", 4));
    EXPECT_EQ(read.operation, "1-2");
}

TEST_F(Book, KeepsTheNewest) {
    book_.Write(NumberedAlerts(1, 8), 5);
    EXPECT_EQ(NumbersOf(book_.Read(3, 100, {})), Range(4, 8));
    book_.Write(NumberedAlerts(9, 10), 5);
    const auto page = book_.Read(0, 100, {});
    EXPECT_EQ(NumbersOf(page), Range(6, 10));
    EXPECT_EQ(page.oldest, 6u);
    EXPECT_EQ(page.newest, 10u);
    EXPECT_EQ(book_.Newest(), 10u);
}

TEST_F(Book, CountsAlertsAndNotNumbers) {
    book_.Write(NumberedAlerts(1, 3), 5);
    book_.Write(NumberedAlerts(100001, 100002), 5);
    EXPECT_EQ(book_.Read(0, 100, {}).oldest, 1u) << "a jump of the numbers costs no alert";
    book_.Write(NumberedAlerts(100003, 100003), 5);
    EXPECT_EQ(book_.Read(0, 100, {}).oldest, 2u);
}

TEST_F(Book, CountsWhatWasThereBefore) {
    book_.Write(NumberedAlerts(1, 8), 8);
    AlertBook another(database_);
    another.Write(NumberedAlerts(9, 9), 5);
    EXPECT_EQ(NumbersOf(another.Read(4, 100, {})), Range(5, 9));
}

TEST_F(Book, DoesNotGrowWithTheAlertsThatWentThrough) {
    std::uint64_t last = 0;
    const auto write = [&](int batches) {
        for (int i = 0; i < batches; ++i, last += 50)
            book_.Write(NumberedAlerts(last + 1, last + 50), 500);
        database_.Run("PRAGMA wal_checkpoint(TRUNCATE)");
        return std::filesystem::file_size(place_.Path("oamd.db"));
    };
    const auto full = write(20);
    EXPECT_LE(write(400), full + full / 10);
    EXPECT_EQ(book_.Read(0, 1000, {}).alerts.size(), 500u);
}

TEST_F(Book, AnAlertThatIsWrittenAgainIsThereOnce) {
    book_.Write(NumberedAlerts(1, 3), 5);
    book_.Write({Numbered(3, AlertOf("again"))}, 5);
    book_.Write(NumberedAlerts(4, 5), 5);
    const auto page = book_.Read(0, 100, {});
    EXPECT_EQ(NumbersOf(page), Range(1, 5));
    EXPECT_EQ(page.alerts[2].text, "again");
}

TEST_F(Book, PagesGoOnWhereTheLastOneEnded) {
    book_.Write(NumberedAlerts(1, 10), 100);
    const auto first = book_.Read(0, 4, {});
    EXPECT_EQ(NumbersOf(first), Range(1, 4));
    EXPECT_EQ(first.scanned, 4u);
    EXPECT_EQ(NumbersOf(book_.Read(first.scanned, 100, {})), Range(5, 10));
    const auto end = book_.Read(10, 100, {});
    EXPECT_THAT(end.alerts, IsEmpty());
    EXPECT_EQ(end.scanned, 10u);
}

TEST_F(Book, HasNothingBehindTheNewest) {
    book_.Write(NumberedAlerts(1, 3), 100);
    for (const std::uint64_t after : {std::uint64_t{4}, ~std::uint64_t{0}}) {
        const auto page = book_.Read(after, 100, {});
        EXPECT_THAT(page.alerts, IsEmpty());
        EXPECT_EQ(page.scanned, after);
        EXPECT_FALSE(page.firstBehindGap);
    }
}

TEST_F(Book, TellsWhatIsMissing) {
    book_.Write(NumberedAlerts(5, 6), 100);
    book_.Write(NumberedAlerts(9, 9), 100);
    const auto before = book_.Read(2, 100, {});
    EXPECT_EQ(before.firstBehindGap, 5u) << "3 and 4";
    EXPECT_EQ(NumbersOf(before), Range(5, 6));
    const auto between = book_.Read(before.scanned, 100, {});
    EXPECT_EQ(between.firstBehindGap, 9u) << "7 and 8";
    EXPECT_EQ(NumbersOf(between), Range(9, 9));
    EXPECT_FALSE(book_.Read(4, 100, {}).firstBehindGap);
}

TEST_F(Book, TellsWhatIsMissingAlsoWhenNothingMatches) {
    book_.Write(NumberedAlerts(5, 6), 100);
    AlertFilter filter;
    filter.textPart = "nothing such";
    const auto page = book_.Read(2, 100, filter);
    EXPECT_EQ(page.firstBehindGap, 5u);
    EXPECT_THAT(page.alerts, IsEmpty());
    EXPECT_EQ(page.scanned, 6u);
}

TEST_F(Book, ReadsWhatMatches) {
    book_.Write({Numbered(1, AlertOf("a", OAMEVN_ALERT, "Board 1")),
                 Numbered(2, AlertOf("b", OAMEVN_TRACE, "Board 2")),
                 Numbered(3, AlertOf("c", OAMEVN_ALERT, "BOARD 1", OAM_ERROR)),
                 Numbered(4, AlertOf("d", OAMEVN_ALERT, "Board 3"))},
                100);
    AlertFilter filter;
    filter.source = "board 1";
    const auto page = book_.Read(0, 100, filter);
    EXPECT_EQ(NumbersOf(page), (std::vector<std::uint64_t>{1, 3}));
    EXPECT_EQ(page.scanned, 4u);
    const auto one = book_.Read(0, 1, filter);
    EXPECT_EQ(NumbersOf(one), Range(1, 1));
    EXPECT_EQ(one.scanned, 1u) << "the next page must not miss one";
    filter.leastSeverity = OAM_WARNING;
    EXPECT_EQ(NumbersOf(book_.Read(0, 100, filter)), Range(3, 3));
}

TEST_F(Book, ARareMatchCostsAPageWithoutOne) {
    constexpr std::uint64_t kAlerts = AlertBook::kMostScanned + 10;
    book_.Write(NumberedAlerts(1, kAlerts), kAlerts);
    AlertFilter filter;
    filter.textPart = "alert " + std::to_string(kAlerts);
    const auto first = book_.Read(0, 10, filter);
    EXPECT_THAT(first.alerts, IsEmpty());
    EXPECT_EQ(first.scanned, AlertBook::kMostScanned);
    EXPECT_EQ(NumbersOf(book_.Read(first.scanned, 10, filter)), Range(kAlerts, kAlerts));
}

TEST_F(Book, AWriteThatFailsLeavesNothingBehind) {
    book_.Write(NumberedAlerts(1, 3), 5);
    database_.Run(
        "CREATE TRIGGER refuse BEFORE INSERT ON alerts WHEN new.sequence = 6"
        " BEGIN SELECT raise(ABORT, 'no'); END");
    EXPECT_THROW(book_.Write(NumberedAlerts(4, 8), 5), StoreError);
    EXPECT_EQ(NumbersOf(book_.Read(0, 100, {})), Range(1, 3));
    database_.Run("DROP TRIGGER refuse");
    book_.Write(NumberedAlerts(4, 8), 5);
    EXPECT_EQ(NumbersOf(book_.Read(3, 100, {})), Range(4, 8)) << "and it counts as before";
}

}  // namespace
}  // namespace oam::server
