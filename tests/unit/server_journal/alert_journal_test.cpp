// Every alert reaches the journal, in order, and what is missing is said.
#include "journal/alert_journal.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace oam::server {
namespace {

std::string valueOf(const std::vector<std::string>& fields, const std::string& name) {
    for (const std::string& field : fields)
        if (field.starts_with(name + "=")) return field.substr(name.size() + 1);
    return "";
}

const auto kNobody = [](const std::string&) { return std::string(); };

TEST(AlertJournal, TellsEveryAlertInOrderUpToTheLast) {
    std::vector<std::string> numbers;
    Journal journal([&](const std::vector<std::string>& fields) {
        numbers.push_back(valueOf(fields, "OAM_SEQ"));
    });
    AlertRing ring(7, 1000);
    constexpr int kAlerts = 500;
    {
        const AlertJournal way(ring, journal, kNobody);
        for (int i = 0; i < kAlerts; ++i) (void)ring.Publish({});
        ring.Close();
    }
    ASSERT_EQ(numbers.size(), static_cast<std::size_t>(kAlerts));
    for (int i = 0; i < kAlerts; ++i)
        EXPECT_EQ(numbers[static_cast<std::size_t>(i)], std::to_string(8 + i));
}

TEST(AlertJournal, TellsWhoAskedForTheOperationThatAnAlertEnds) {
    std::vector<std::string> users;
    Journal journal([&](const std::vector<std::string>& fields) {
        users.push_back(valueOf(fields, "OAM_OP") + " of " + valueOf(fields, "OAM_USER"));
    });
    AlertRing ring(0, 10);
    {
        const AlertJournal way(ring, journal, [](const std::string& operation) {
            return operation == "3-4" ? "alice" : "somebody else";
        });
        StoredAlert alert;
        alert.operation = "3-4";
        (void)ring.Publish(std::move(alert));
        (void)ring.Publish({});
        ring.Close();
    }
    EXPECT_EQ(users, (std::vector<std::string>{"3-4 of alice", " of "}));
}

TEST(AlertJournal, SaysWhatIsMissing) {
    std::vector<std::string> messages;
    Journal journal([&](const std::vector<std::string>& fields) {
        messages.push_back(valueOf(fields, "MESSAGE"));
    });
    AlertRing ring(0, 10);
    {
        const AlertJournal way(ring, journal, kNobody);
        (void)ring.PublishMissing();
        (void)ring.Publish({});
        ring.Close();
    }
    ASSERT_FALSE(messages.empty());
    EXPECT_NE(messages.front().find("behind number 0 are missing"), std::string::npos)
        << messages.front();
}

}  // namespace
}  // namespace oam::server
