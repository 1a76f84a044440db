// The file of roles: what is a rule, and what is said of a line that is none.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "access/roles.h"

namespace oam::server::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

Role rootsRole(const std::string& rules) {
    Caller root;
    root.user = 0;
    return Roles::Parse(rules, "roles.conf").Of(root);
}

std::string complaint(const std::string& rules) {
    try {
        (void)Roles::Parse(rules, "roles.conf");
    } catch (const RolesError& error) {
        return error.what();
    }
    return "no complaint";
}

}  // namespace

TEST(RolesFile, CommentsAndBlankLinesAreNoRules) {
    EXPECT_EQ(rootsRole("# user root admin\n\n   \n\t# x\nuser root viewer\n"), Role::kViewer);
    EXPECT_EQ(rootsRole(std::string("# a zero byte ") + '\0' + " in a comment\neveryone viewer"),
              Role::kViewer);
}

TEST(RolesFile, BlanksAroundWordsDoNotCount) {
    EXPECT_EQ(rootsRole("  user\t root   operator \r\n"), Role::kOperator);
    EXPECT_EQ(rootsRole("\teveryone\tadmin"), Role::kAdmin);
}

TEST(RolesFile, TheLastLineNeedsNoEnd) {
    EXPECT_EQ(rootsRole("user root configurator"), Role::kConfigurator);
}

TEST(RolesFile, ALineThatIsNoRuleIsNamedByItsNumber) {
    EXPECT_EQ(complaint("# first\n\nusr root admin\n"),
              "roles.conf:3: \"usr\" is none of user, group, certificate and everyone");
    EXPECT_EQ(complaint("everyone viewer\nuser root manager"),
              "roles.conf:2: \"manager\" is none of viewer, operator, configurator and admin");
}

TEST(RolesFile, ARuleHasExactlyItsWords) {
    for (const char* rule : {"user", "user root", "user root admin too", "group staff",
                             "certificate noc.example.net", "certificate a b viewer"})
        EXPECT_THAT(complaint(rule), HasSubstr("takes a name and a role")) << rule;
    EXPECT_THAT(complaint("everyone"), HasSubstr("takes a role"));
    EXPECT_THAT(complaint("everyone else viewer"), HasSubstr("takes a role"));
}

TEST(RolesFile, WordsAreTakenAsTheyAre) {
    for (const char* rule :
         {"User root admin", "user root Admin", "user root none", "user root admin,",
          "everyone kAdmin", "root admin", "\"user\" root admin"})
        EXPECT_THAT(complaint(rule), StartsWith("roles.conf:1: ")) << rule;
}

TEST(RolesFile, AZeroByteIsNoPartOfAName) {
    EXPECT_EQ(complaint(std::string("user root") + '\0' + "x admin"), "roles.conf:1: a zero byte");
}

TEST(RolesFile, ForeignBytesInAComplaintAreShownHarmless) {
    EXPECT_EQ(complaint("\x1b[31m x y"),
              "roles.conf:1: \"\\x1b[31m\" is none of user, group, certificate and everyone");
}

TEST(RolesFile, AWrongLineLeavesTheRulesInForce) {
    Roles inForce = Roles::Parse("everyone operator", "roles.conf");
    EXPECT_THROW(inForce = Roles::Parse("everyone admin\nnonsense", "roles.conf"), RolesError);
    Caller caller;
    caller.user = 0;
    EXPECT_EQ(inForce.Of(caller), Role::kOperator);
}

}  // namespace oam::server::test
