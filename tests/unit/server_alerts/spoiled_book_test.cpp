// What is wrong inside the file: garbage, cuts, damaged pages; at a start and while it is used.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "alerts.h"
#include "daemon_parts.h"
#include "store/database.h"
#include "support/installation.h"

namespace oam::server {
namespace {

using test::Installation;
using test::Layout;
using testing::HasSubstr;
using testing::IsEmpty;

class SpoiledBook : public testing::Test {
  protected:
    void MakeBook(std::uint64_t alerts = 2000) {
        Database database(path_);
        AlertBook(database).Write(NumberedAlerts(1, alerts), alerts);
    }
    // The name that the file got.
    std::string Open() {
        std::string setAside;
        Database database(path_, &setAside);
        return setAside;
    }

    Installation place_{Layout::kBare};
    const std::string path_ = place_.Path("oamd.db");
};

TEST_F(SpoiledBook, AFileThatIsNoDatabaseIsSetAsideAsItIs) {
    const std::string garbage(5000, 'g');
    place_.Write("oamd.db", garbage);
    EXPECT_EQ(Open(), path_ + ".spoiled-1");
    EXPECT_EQ(place_.Read("oamd.db.spoiled-1"), garbage);
    EXPECT_THAT(Open(), IsEmpty()) << "the new one is sound";
}

TEST_F(SpoiledBook, TheNextOneGetsTheNextNumber) {
    for (const char* name : {"first", "second", "third"}) {
        place_.Write("oamd.db", std::string(1000, name[0]));
        Open();
    }
    EXPECT_EQ(place_.Read("oamd.db.spoiled-1")[0], 'f');
    EXPECT_EQ(place_.Read("oamd.db.spoiled-2")[0], 's');
    EXPECT_EQ(place_.Read("oamd.db.spoiled-3")[0], 't');
}

TEST_F(SpoiledBook, ANameOfAnyOfItsFilesIsTaken) {
    place_.Write("oamd.db.spoiled-1-wal", "of another time");
    place_.Write("oamd.db", std::string(1000, 'g'));
    EXPECT_EQ(Open(), path_ + ".spoiled-2");
    EXPECT_EQ(place_.Read("oamd.db.spoiled-1-wal"), "of another time");
}

TEST_F(SpoiledBook, ASoundFileIsNotSetAside) {
    MakeBook();
    EXPECT_THAT(Database::SetAsideIfSpoiled(path_), IsEmpty());
    EXPECT_THAT(Database::SetAsideIfSpoiled(place_.Path("none")), IsEmpty());
    EXPECT_EQ(ReadBook(path_).size(), 2000u);
}

TEST_F(SpoiledBook, DamageInsideIsMetByWhoeverReadsThereAndSetAsideThen) {
    MakeBook();
    std::string bytes = place_.Read("oamd.db");
    ASSERT_GT(bytes.size(), 20 * 4096u);
    for (std::size_t i = 5 * 4096; i < 15 * 4096; ++i) bytes[i] = '\x5a';
    place_.Write("oamd.db", bytes);
    EXPECT_THROW(ReadBook(path_), SpoiledStore);
    EXPECT_EQ(Database::SetAsideIfSpoiled(path_), path_ + ".spoiled-1");
    EXPECT_EQ(place_.Read("oamd.db.spoiled-1"), bytes);
    EXPECT_THAT(ReadBook(path_), IsEmpty());
}

TEST_F(SpoiledBook, ACutFileIsSetAside) {
    MakeBook();
    std::filesystem::resize_file(path_, 3 * 4096 + 100);
    EXPECT_EQ(Open(), path_ + ".spoiled-1");
    EXPECT_EQ(place_.Read("oamd.db.spoiled-1").size(), 3 * 4096 + 100u);
}

TEST_F(SpoiledBook, ConnectionsToAFileThatWasSetAsideSaySo) {
    MakeBook();
    Database old(path_);
    AlertBook oldBook(old);
    EXPECT_EQ(oldBook.Newest(), 2000u);
    std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(5 * 4096);
    file << std::string(10 * 4096, '\x5a');
    file.close();
    ASSERT_EQ(Database::SetAsideIfSpoiled(path_), path_ + ".spoiled-1");
    MakeBook(3);
    EXPECT_THROW(oldBook.Newest(), StoreError);
    EXPECT_THROW(oldBook.Write(NumberedAlerts(2001, 2001), 10), StoreError);
    EXPECT_EQ(ReadBook(path_).size(), 3u);
}

// Nothing may come of it but an error that is told, or a book that works.
TEST_F(SpoiledBook, AnyDamageIsRefusedOrSetAsideAndNeverTheDaemonsEnd) {
    MakeBook(500);
    const std::string sound = place_.Read("oamd.db");
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        std::string bytes = sound;
        const std::size_t page = 4096 * (random() % (sound.size() / 4096));
        for (int i = 0; i < 40; ++i) bytes[page + random() % 4096] = static_cast<char>(random());
        if (seed % 3 == 0) bytes.resize(random() % bytes.size());
        place_.Remove("oamd.db");
        place_.Write("oamd.db", bytes);

        DaemonParts daemon(place_.Root());
        const std::uint64_t last = daemon.Publish("after the damage");
        EXPECT_TRUE(daemon.AwaitWritten(last)) << testing::PrintToString(daemon.complaints.All());
    }
}

TEST_F(SpoiledBook, ABookThatSpoilsWhileItIsUsedIsReplacedByANewOne) {
    DaemonParts daemon(place_.Root());
    for (int i = 0; i < 3000; ++i) daemon.Publish("before");
    ASSERT_TRUE(daemon.AwaitWritten(3000));
    {
        // So that what is in the file counts.
        Database other(path_);
        other.Run("PRAGMA wal_checkpoint(TRUNCATE)");
    }
    std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
    file << std::string(30 * 4096, '\x5a');
    file.close();

    daemon.Publish("behind");
    ASSERT_TRUE(daemon.complaints.Await("was spoiled"))
        << testing::PrintToString(daemon.complaints.All());
    ASSERT_TRUE(daemon.AwaitWritten(3001));
    EXPECT_EQ(daemon.complaints.Count("was spoiled"), 1u);
    EXPECT_TRUE(place_.Exists("oamd.db.spoiled-1"));
    const auto kept = ReadBook(path_);
    ASSERT_EQ(kept.size(), 3001u) << "the new book has what memory had";
    EXPECT_EQ(kept.back().text, "behind");
}

TEST_F(SpoiledBook, DamageBehindTheHeadIsMetByTheWriterAtItsStart) {
    { DaemonParts(place_.Root()).Publish("before"); }
    std::string bytes = place_.Read("oamd.db");
    for (std::size_t i = 4096; i < bytes.size(); ++i) bytes[i] = '\x5a';
    place_.Write("oamd.db", bytes);
    { Database database(path_); }  // whoever does not look there does not see it
    DaemonParts daemon(place_.Root());
    daemon.Publish("behind");
    ASSERT_TRUE(daemon.AwaitWritten(2));
    EXPECT_EQ(daemon.complaints.Count("was spoiled"), 1u);
    EXPECT_EQ(daemon.complaints.All().size(), 1u)
        << testing::PrintToString(daemon.complaints.All());
    EXPECT_EQ(place_.Read("oamd.db.spoiled-1"), bytes);
}

TEST_F(SpoiledBook, ABookThatIsDeletedWhileItIsUsedIsBegunAnew) {
    DaemonParts daemon(place_.Root());
    const OperationRecord done = daemon.RunOperation("Board 1");
    ASSERT_TRUE(daemon.AwaitWritten(1));
    for (const char* end : {"", "-wal", "-shm"}) place_.Remove(std::string("oamd.db") + end);
    daemon.Publish("two");
    ASSERT_TRUE(daemon.complaints.Await("moved or deleted"));
    ASSERT_TRUE(daemon.complaints.Await("can be written again"));
    ASSERT_TRUE(daemon.AwaitWritten(2));
    EXPECT_EQ(ReadBook(path_).size(), 2u);
    daemon.RunOperation("Board 2");
    ASSERT_TRUE(daemon.AwaitWritten(3));
    Database database(path_);
    EXPECT_EQ(OperationStore::Load(database).size(), 2u) << "operations come with it";
}

TEST_F(SpoiledBook, NumbersAndIdentitiesGoOnWithANewBook) {
    std::string id;
    {
        DaemonParts daemon(place_.Root());
        daemon.Publish("one");
        id = daemon.RunOperation("Board 1").id;
    }
    place_.Write("oamd.db", std::string(1000, 'g'));
    DaemonParts daemon(place_.Root());
    EXPECT_EQ(daemon.Publish("three"), 3u);
    EXPECT_NE(daemon.RunOperation("Board 1").id, id);
    EXPECT_EQ(daemon.operations.Find(id)->state, OperationState::kUnknown);
}

}  // namespace
}  // namespace oam::server
