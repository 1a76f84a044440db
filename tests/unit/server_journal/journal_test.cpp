// The journal's fields, and that a reader who does not read keeps nobody waiting.
#include "journal/journal.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "oam/message.h"

namespace oam::server {
namespace {

using ::testing::ElementsAre;

class JournalFields : public ::testing::Test {
  protected:
    std::vector<std::string> fields;
    Journal journal{[this](const std::vector<std::string>& sent) { fields = sent; }};
};

TEST_F(JournalFields, OfAnAlertAreWhatOneSearchesFor) {
    StoredAlert alert;
    alert.sequence = 17;
    alert.code = 0x40000011;
    alert.severity = OAM_ERROR;
    alert.source = "Board 3";
    alert.text = "Board is dead.\n";
    alert.operation = "3-4";
    journal.Alert(alert, "alice");
    EXPECT_THAT(fields,
                ElementsAre("MESSAGE=\"Board 3\": Board is dead.", "PRIORITY=3",
                            "SYSLOG_IDENTIFIER=oamd", "OAM_BOARD=Board 3", "OAM_CODE=0x40000011",
                            "OAM_SEVERITY=2", "OAM_SEQ=17", "OAM_OP=3-4", "OAM_USER=alice"));
}

TEST_F(JournalFields, HaveTheAlertsPriority) {
    StoredAlert alert;
    for (const auto& [severity, priority] :
         {std::pair(OAM_INFORMATION, "PRIORITY=6"), std::pair(OAM_WARNING, "PRIORITY=4"),
          std::pair(OAM_ERROR, "PRIORITY=3")}) {
        alert.severity = static_cast<std::uint32_t>(severity);
        journal.Alert(alert);
        EXPECT_THAT(fields, ::testing::Contains(priority));
    }
}

TEST_F(JournalFields, OfADenialAreWhoMayNotDoWhatToWhat) {
    journal.Denied("certificate noc", "viewer", "StartBoard", "Board 3");
    EXPECT_THAT(fields,
                ElementsAre("MESSAGE=denied: certificate noc (viewer) may not StartBoard of "
                            "\"Board 3\"",
                            "PRIORITY=4", "SYSLOG_IDENTIFIER=oamd", "OAM_USER=certificate noc",
                            "OAM_ROLE=viewer", "OAM_VERB=StartBoard", "OAM_OBJECT=Board 3"));
}

TEST_F(JournalFields, OfADenialAreBounded) {
    journal.Denied("root", "none", "GetBoard", std::string(1000000, 'x'));
    for (const std::string& field : fields) EXPECT_LT(field.size(), 400u) << field.substr(0, 40);
}

TEST_F(JournalFields, OfAnOperationAreWhoAskedForWhichOfWhichBoard) {
    OperationRecord operation;
    operation.id = "3-4";
    operation.kind = OperationKind::kStop;
    operation.board = "Board 3";
    operation.user = "alice";
    journal.Operation(operation);
    EXPECT_THAT(fields, ElementsAre("MESSAGE=alice asked for operation 3-4 (StopBoard of "
                                    "\"Board 3\")",
                                    "PRIORITY=6", "SYSLOG_IDENTIFIER=oamd", "OAM_USER=alice",
                                    "OAM_OP=3-4", "OAM_VERB=StopBoard", "OAM_BOARD=Board 3"));
}

TEST_F(JournalFields, OfARefusedOperationTellWhy) {
    OperationRecord operation;
    operation.id = "3-5";
    operation.user = "alice";
    operation.state = OperationState::kRefused;
    operation.text = "no such board";
    operation.code = 0x40000004;
    journal.Operation(operation);
    EXPECT_THAT(fields, ::testing::IsSupersetOf({"OAM_OP=3-5", "OAM_USER=alice",
                                                 "OAM_VERB=StartBoard", "OAM_CODE=0x40000004"}));
    EXPECT_THAT(fields[0], ::testing::HasSubstr("refused: no such board"));
}

TEST_F(JournalFields, OfADeedAreWhoDidWhatToWhat) {
    journal.Deed("alice via oam-console", "change", "Board 3", 17);
    EXPECT_THAT(
        fields,
        ElementsAre("MESSAGE=alice via oam-console: change of \"Board 3\", generation 17",
                    "PRIORITY=6", "SYSLOG_IDENTIFIER=oamd", "OAM_USER=alice via oam-console",
                    "OAM_VERB=change", "OAM_OBJECT=Board 3", "OAM_GENERATION=17"));
    journal.Deed("root", "RestartService", "");
    EXPECT_THAT(fields,
                ElementsAre("MESSAGE=root: RestartService", "PRIORITY=6", "SYSLOG_IDENTIFIER=oamd",
                            "OAM_USER=root", "OAM_VERB=RestartService"));
}

// Standard error is a pipe while it lives.
class PipedError {
  public:
    PipedError() : own_(dup(STDERR_FILENO)) {
        EXPECT_EQ(pipe(ends_), 0);
        dup2(ends_[1], STDERR_FILENO);
    }
    ~PipedError() {
        dup2(own_, STDERR_FILENO);
        for (const int one : {own_, ends_[0], ends_[1]}) close(one);
    }
    std::string Read() const {
        std::string all;
        char bytes[4096];
        fcntl(ends_[0], F_SETFL, O_NONBLOCK);
        for (ssize_t got; (got = read(ends_[0], bytes, sizeof bytes)) > 0;)
            all.append(bytes, static_cast<std::size_t>(got));
        return all;
    }

  private:
    int own_;
    int ends_[2];
};

TEST(JournalOnStandardError, DoesNotWaitForAReaderAndTellsWhatWasLeftOut) {
    const PipedError error;
    Journal journal{Journal::Send()};
    constexpr int kMoreThanAPipeHolds = 3000;
    for (int i = 0; i < kMoreThanAPipeHolds; ++i)
        journal.Say(Priority::kNotice, std::string(100, 'x'));
    const std::string first = error.Read();
    EXPECT_EQ(first.find("left out"), std::string::npos);
    journal.Say(Priority::kNotice, "again");
    EXPECT_THAT(error.Read(),
                ::testing::MatchesRegex("oamd: [0-9]+ lines were left out\noamd: again\n"));
    journal.Say(Priority::kNotice, "and on");
    EXPECT_EQ(error.Read(), "oamd: and on\n");
}

TEST(JournalOnStandardError, LeavesOutInformation) {
    const PipedError error;
    Journal journal{Journal::Send()};
    StoredAlert alert;
    alert.source = "Board 3";
    alert.text = "started";
    journal.Alert(alert);
    alert.severity = OAM_WARNING;
    alert.text = "hot";
    journal.Alert(alert);
    EXPECT_EQ(error.Read(), "oamd: \"Board 3\": hot\n");
}

}  // namespace
}  // namespace oam::server
