#include "store/schema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "alerts.h"
#include "daemon_parts.h"
#include "store/database.h"
#include "support/installation.h"

namespace oam::server {
namespace {

using test::Installation;
using test::Layout;
using testing::HasSubstr;

constexpr std::int64_t kNewest = 2;

// As another program would.
void run(const std::string& path, const char* sql) {
    sqlite3* handle = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &handle), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(handle, sql, nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(handle);
    sqlite3_close(handle);
}

std::string failureOf(const std::string& path) {
    std::string setAside;
    try {
        Database database(path, &setAside);
    } catch (const SpoiledStore&) {
        return "spoiled";
    } catch (const StoreError& error) {
        return error.what();
    }
    return "no failure" + setAside;
}

class Schema : public testing::Test {
  protected:
    std::int64_t Version() {
        Database database(path_);
        Statement statement(database, "PRAGMA user_version");
        return statement.Step() ? statement.Number(0) : -1;
    }

    Installation place_{Layout::kBare};
    const std::string path_ = place_.Path("oamd.db");
};

TEST_F(Schema, ANewBookHasTheNewestVersion) { EXPECT_EQ(Version(), kNewest); }

TEST_F(Schema, AFileOfANewerVersionIsRefusedAndLeftAlone) {
    { Database database(path_); }
    run(path_, "PRAGMA user_version = 1000");
    const std::string before = place_.Read("oamd.db");
    EXPECT_THAT(failureOf(path_), HasSubstr("version 1000"));
    EXPECT_EQ(place_.Read("oamd.db"), before);
    EXPECT_EQ(place_.List("."), (std::vector<std::string>{"oamd.db", "shm"}));
}

TEST_F(Schema, AnotherProgramsDatabaseIsRefusedAndLeftAlone) {
    run(path_, "CREATE TABLE cakes (name TEXT); INSERT INTO cakes VALUES ('plum')");
    const std::string before = place_.Read("oamd.db");
    EXPECT_THAT(failureOf(path_), HasSubstr("another program's"));
    EXPECT_EQ(place_.Read("oamd.db"), before);
}

TEST_F(Schema, AnEmptyFileBecomesABook) {
    place_.Write("oamd.db", "");
    EXPECT_EQ(failureOf(path_), "no failure");
    EXPECT_EQ(Version(), kNewest);
}

TEST_F(Schema, ABookThatLacksItsStepsGetsThem) {
    // As after a kill between the making of the file and its first step.
    run(path_, "PRAGMA journal_mode = WAL");
    EXPECT_EQ(failureOf(path_), "no failure");
    EXPECT_EQ(Version(), kNewest);
}

TEST_F(Schema, TheDaemonGoesOnWithoutABookOfANewerVersion) {
    { Database database(path_); }
    run(path_, "PRAGMA user_version = 1000");
    DaemonParts daemon(place_.Root());
    EXPECT_TRUE(daemon.complaints.Await("version 1000"));
    EXPECT_EQ(daemon.Publish("live"), daemon.numbers.LastAlert() + 1);
    EXPECT_EQ(daemon.ring.Read(daemon.numbers.LastAlert(), 10).alerts.at(0)->text, "live");
    EXPECT_EQ(daemon.RunOperation("Board 1").state, OperationState::kDone);
}

}  // namespace
}  // namespace oam::server
