#include "history/announcements.h"

#include <gtest/gtest.h>

#include "matchers.h"

namespace oam::server::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = ObjectDifference::Kind;

ObjectChange change(const std::string& object, Kind kind = Kind::kChanged,
                    const std::string& previous = {}) {
    return {object, previous, {}, kind, {}, {}};
}

class Announcing : public ::testing::Test {
  protected:
    // Each commit as "user: change, change".
    std::vector<std::string> Share(std::vector<ObjectChange> changes) const {
        std::vector<std::string> texts;
        for (const Commit& commit : all.Share(std::move(changes), {"service", "", ""})) {
            texts.push_back(commit.occasion.user + ":");
            for (const ObjectChange& one : commit.changes) texts.back() += " " + TextOf(one);
        }
        return texts;
    }

    Announcements all;
};

}  // namespace

TEST_F(Announcing, LeavesToTheServiceWhatNobodyAnnounced) {
    EXPECT_THAT(Share({change("A")}), ElementsAre("service: changed A"));
    Announced b{{"bob", "change", ""}, "b"};
    all.Add(&b);
    EXPECT_THAT(Share({change("A")}), ElementsAre("service: changed A", "bob:"));
}

TEST_F(Announcing, GivesEachItsOwnObject) {
    Announced a{{"ann", "change", ""}, "a"};
    Announced b{{"bob", "change", ""}, "b"};
    all.Add(&a);
    all.Add(&b);
    EXPECT_THAT(Share({change("A"), change("B"), change("C")}),
                ElementsAre("service: changed C", "ann: changed A", "bob: changed B"));
    all.Remove(&a);
    EXPECT_THAT(Share({change("A"), change("B")}),
                ElementsAre("service: changed A", "bob: changed B"));
}

TEST_F(Announcing, KnowsARenamedObjectByBothNames) {
    Announced a{{"ann", "change", ""}, "a"};
    all.Add(&a);
    EXPECT_THAT(Share({change("B", Kind::kChanged, "A")}),
                ElementsAre("service:", "ann: changed B (was A)"));
}

TEST_F(Announcing, PrefersWhoNamedTheObject) {
    Announced any{{"ann", "import", ""}, ""};
    Announced b{{"bob", "change", ""}, "b"};
    all.Add(&any);
    all.Add(&b);
    EXPECT_THAT(Share({change("A"), change("B")}),
                ElementsAre("service:", "ann: changed A", "bob: changed B"));
}

TEST_F(Announcing, PrefersTheOlderOne) {
    Announced first{{"ann", "change", ""}, "a"};
    Announced second{{"bob", "change", ""}, "a"};
    all.Add(&first);
    all.Add(&second);
    EXPECT_THAT(Share({change("A")}), ElementsAre("service:", "ann: changed A", "bob:"));
}

TEST_F(Announcing, GivesWithoutANameOnlyWhatTheActionCanDo) {
    const std::vector<ObjectChange> changes{change("A"), change("B", Kind::kCreated),
                                            change("C", Kind::kDeleted)};
    const std::pair<const char*, const char*> cases[] = {
        {"create", "ann: created B"},
        {"delete", "ann: deleted C"},
        {"add", "ann: changed A created B"},
        {"import", "ann: changed A created B deleted C"},
        {"change", "ann: changed A created B deleted C"},
    };
    for (const auto& [action, expected] : cases) {
        Announced one{{"ann", action, ""}, ""};
        all.Add(&one);
        EXPECT_EQ(Share(changes).at(1), expected) << action;
        all.Remove(&one);
    }
}

TEST_F(Announcing, DoubtsNamesOnlyWhileAllFilesAreGivenOutAnew) {
    EXPECT_TRUE(all.MayRename());
    Announced change{{"ann", "change", ""}, ""};
    Announced one{{"ann", "rollback", ""}, "a"};
    all.Add(&change);
    all.Add(&one);
    EXPECT_TRUE(all.MayRename());
    for (const char* action : {"import", "rollback"}) {
        Announced everything{{"ann", action, ""}, ""};
        all.Add(&everything);
        EXPECT_FALSE(all.MayRename()) << action;
        all.Remove(&everything);
    }
}

TEST_F(Announcing, RemembersTheNewestGenerationOfEach) {
    Announced a{{"ann", "change", ""}, "a"};
    Announced b{{"bob", "change", ""}, "b"};
    all.Add(&a);
    all.Add(&b);
    auto commits = all.Share({change("A")}, {});
    commits[1].generation = 7;
    all.Settle(commits);
    EXPECT_EQ(a.generation, 7u);
    EXPECT_EQ(b.generation, 0u);
    commits[1].generation = 0;
    commits[2].generation = 8;
    all.Settle(commits);
    EXPECT_EQ(a.generation, 7u);
    EXPECT_EQ(b.generation, 8u);
    all.Settle(Generation{9});
    EXPECT_EQ(a.generation, 9u);
}

}  // namespace oam::server::test
