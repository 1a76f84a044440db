#include "operations/alert_intake.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "alerts.h"
#include "store/moment.h"
#include "throwing_fuse.h"

namespace oam::server {
namespace {

// A record as a plug-in may make it.
class Record {
  public:
    Record(std::uint32_t code, std::uint32_t severity, const std::string& source,
           const std::string& text)
        : bytes_(sizeof(oam_msg_tag) + source.size() + text.size() + 2) {
        oam_msg_tag head{};
        head.size = static_cast<std::uint32_t>(bytes_.size());
        head.code = code;
        head.severity = severity;
        head.sourceOffset = sizeof head;
        head.textOffset = static_cast<std::uint32_t>(sizeof head + source.size() + 1);
        std::memcpy(bytes_.data(), &head, sizeof head);
        std::memcpy(bytes_.data() + head.sourceOffset, source.c_str(), source.size() + 1);
        std::memcpy(bytes_.data() + head.textOffset, text.c_str(), text.size() + 1);
    }
    const oam_msg_tag& Get() const { return *reinterpret_cast<const oam_msg_tag*>(bytes_.data()); }

  private:
    std::vector<char> bytes_;
};

TEST(AlertIntake, ReadsARecordWhole) {
    const auto before = MomentNow();
    const StoredAlert alert =
        ReadAlert(Record(OAMEVN_BOARD_DEAD, OAM_ERROR, "Board 1", "it is dead").Get());
    EXPECT_GE(alert.time, before);
    // The book must give back what was told live.
    EXPECT_EQ(momentOf(microsecondsOf(alert.time)), alert.time);
    EXPECT_EQ(alert.code, unsigned{OAMEVN_BOARD_DEAD});
    EXPECT_EQ(alert.severity, unsigned{OAM_ERROR});
    EXPECT_EQ(alert.source, "Board 1");
    EXPECT_EQ(alert.text, "it is dead");
    EXPECT_EQ(alert.sequence, 0u);
}

TEST(AlertIntake, CutsTextsThatWouldBreakTheBounds) {
    const std::string longest(kLongestAlertText, 't');
    const StoredAlert fits = ReadAlert(Record(1, 0, longest, longest).Get());
    EXPECT_EQ(fits.source, longest);
    EXPECT_EQ(fits.text, longest);
    const StoredAlert cut =
        ReadAlert(Record(1, 0, longest + "x", std::string(10000000, 't')).Get());
    EXPECT_EQ(cut.source, longest);
    EXPECT_EQ(cut.text, longest);
    EXPECT_LT(cut.text.capacity(), 2 * kLongestAlertText) << "and keeps no more than it shows";
}

TEST(AlertIntake, AnOutcomeCarriesItsOperationAndTheOperationItsNumber) {
    AlertRing ring(100, 10);
    OperationBook book(7, 10);
    const std::string id = book.Begin(OperationKind::kStart, "Board 1", "root").id;
    EXPECT_EQ(TakeIn(AlertOf("something else"), book, ring), 101u);
    EXPECT_EQ(TakeIn(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", "good"), book, ring), 102u);
    const auto batch = ring.Read(100, 10);
    ASSERT_EQ(NumbersOf(batch), Range(101, 102));
    EXPECT_EQ(batch.alerts[0]->operation, "");
    EXPECT_EQ(batch.alerts[1]->operation, id);
    EXPECT_EQ(book.Find(id)->sequence, 102u);
    EXPECT_EQ(book.Find(id)->state, OperationState::kDone);
}

TEST(AlertIntake, AfterTheRingIsClosedAnOutcomeStillEndsItsOperation) {
    AlertRing ring(100, 10);
    OperationBook book(7, 10);
    const std::string id = book.Begin(OperationKind::kStart, "Board 1", "root").id;
    int calls = 0;
    book.Wait(id, [&](const OperationRecord&) { ++calls; });
    ring.Close();
    EXPECT_EQ(TakeIn(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", "good"), book, ring), 0u);
    EXPECT_EQ(calls, 1);
}

// 18 digits: an identity that needs memory of its own.
TEST(AlertIntake, OutOfMemoryCostsNeitherANumberNorTheEndOfAWait) {
    AlertRing ring(0, 10);
    OperationBook book(100000000000000000, 10);
    bool hasBlown = true;
    int nth = 1;
    for (; hasBlown && nth < 100; ++nth) {
        SCOPED_TRACE("allocation " + std::to_string(nth));
        const std::string id = book.Begin(OperationKind::kStart, "Board 1", "root").id;
        int calls = 0;
        book.Wait(id, [&](const OperationRecord&) { ++calls; });
        StoredAlert alert = OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", std::string(100, 't'));
        {
            const ThrowingFuse fuse(nth);
            EXPECT_EQ(TakeIn(std::move(alert), book, ring), static_cast<std::uint64_t>(nth));
            hasBlown = fuse.HasBlown();
        }
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(book.Find(id)->sequence, static_cast<std::uint64_t>(nth));
    }
    EXPECT_GT(nth, 3) << "it needs memory for its text, its operation and its place";
    EXPECT_FALSE(hasBlown);
}

}  // namespace
}  // namespace oam::server
