#include "access/roles.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>

#include "access/accounts.h"

namespace oam::server::test {
namespace {

// A number that no account has.
constexpr uid_t kNobodysUser = 4242424;
constexpr gid_t kNobodysGroup = 4242424;

Caller local(uid_t user, std::vector<gid_t> groups = {}) {
    Caller caller;
    caller.user = user;
    caller.groups = std::move(groups);
    return caller;
}

Caller remote(const std::string& certificate) {
    Caller caller;
    caller.certificate = certificate;
    return caller;
}

Role roleIn(const std::string& rules, const Caller& caller) {
    return Roles::Parse(rules, "roles.conf").Of(caller);
}

std::string rootGroup() { return getgrgid(0)->gr_name; }

}  // namespace

TEST(Roles, HaveNames) {
    EXPECT_STREQ(RoleName(Role::kNone), "none");
    EXPECT_STREQ(RoleName(Role::kViewer), "viewer");
    EXPECT_STREQ(RoleName(Role::kOperator), "operator");
    EXPECT_STREQ(RoleName(Role::kConfigurator), "configurator");
    EXPECT_STREQ(RoleName(Role::kAdmin), "admin");
}

TEST(Roles, HoldTheOnesBeforeThem) {
    EXPECT_LT(Role::kNone, Role::kViewer);
    EXPECT_LT(Role::kViewer, Role::kOperator);
    EXPECT_LT(Role::kOperator, Role::kConfigurator);
    EXPECT_LT(Role::kConfigurator, Role::kAdmin);
}

TEST(Roles, WithoutAFileRootAndTheDaemonsUserAreAdminAndOthersViewers) {
    const Roles roles;
    EXPECT_EQ(roles.Of(local(0)), Role::kAdmin);
    EXPECT_EQ(roles.Of(local(geteuid())), Role::kAdmin);
    EXPECT_EQ(roles.Of(local(kNobodysUser)), Role::kViewer);
    EXPECT_EQ(roles.Of(local(kNobodysUser, {0})), Role::kViewer);
    EXPECT_EQ(roles.Of(remote("root")), Role::kNone);
    EXPECT_EQ(roles.Of({}), Role::kNone);
}

TEST(Roles, WithAFileOnlyItsRulesCount) {
    EXPECT_EQ(roleIn("", local(0)), Role::kNone);
    EXPECT_EQ(roleIn("user root operator\n", local(0)), Role::kOperator);
    EXPECT_EQ(roleIn("user root operator\n", local(kNobodysUser)), Role::kNone);
}

TEST(Roles, GoByTheUsersNumberBehindTheName) {
    EXPECT_EQ(roleIn("user root admin\n", local(0)), Role::kAdmin);
    EXPECT_EQ(roleIn("user no-such-user admin\n", local(0)), Role::kNone);
    EXPECT_EQ(roleIn("user ROOT admin\n", local(0)), Role::kNone);
}

TEST(Roles, GoByAllGroupsOfAUser) {
    const std::string rule = "group " + rootGroup() + " configurator\n";
    EXPECT_EQ(roleIn(rule, local(kNobodysUser, {17, 0, 18})), Role::kConfigurator);
    EXPECT_EQ(roleIn(rule, local(kNobodysUser, {17, 18})), Role::kNone);
    EXPECT_EQ(roleIn(rule, local(0)), Role::kNone);
    EXPECT_EQ(roleIn("group no-such-group admin\n", local(0, {0})), Role::kNone);
}

TEST(Roles, GoByTheNameInACertificate) {
    const std::string rule = "certificate noc.example.net operator\n";
    EXPECT_EQ(roleIn(rule, remote("noc.example.net")), Role::kOperator);
    EXPECT_EQ(roleIn(rule, remote("noc.example.ne")), Role::kNone);
    EXPECT_EQ(roleIn(rule, remote("noc.example.net.evil")), Role::kNone);
    EXPECT_EQ(roleIn(rule, remote(std::string("noc.example.net\0.evil", 21))), Role::kNone);
    EXPECT_EQ(roleIn(rule, remote("")), Role::kNone);
    EXPECT_EQ(roleIn(rule, local(0)), Role::kNone);
}

TEST(Roles, AUserIsNoCertificateAndNoGroup) {
    EXPECT_EQ(roleIn("user root admin\ngroup " + rootGroup() + " admin\n", remote("root")),
              Role::kNone);
    EXPECT_EQ(roleIn("certificate root admin\n", local(0)), Role::kNone);
}

TEST(Roles, EveryoneIsEveryLocalUserOnly) {
    EXPECT_EQ(roleIn("everyone operator\n", local(kNobodysUser)), Role::kOperator);
    EXPECT_EQ(roleIn("everyone operator\n", remote("noc.example.net")), Role::kNone);
}

TEST(Roles, TheHighestOfAllThatMatchCounts) {
    const std::string rules = "user root viewer\neveryone operator\ngroup " + rootGroup() +
                              " admin\nuser root configurator\n";
    EXPECT_EQ(roleIn(rules, local(0)), Role::kConfigurator);
    EXPECT_EQ(roleIn(rules, local(0, {0})), Role::kAdmin);
    EXPECT_EQ(roleIn(rules, local(kNobodysUser)), Role::kOperator);
}

TEST(Callers, HaveNamesForLogsAndHistory) {
    EXPECT_EQ(local(0).Name(), "root");
    EXPECT_EQ(local(kNobodysUser).Name(), "uid 4242424");
    EXPECT_EQ(remote("noc.example.net").Name(), "certificate noc.example.net");
    EXPECT_EQ(Caller().Name(), "unknown");
}

TEST(Accounts, AnswerAsTheSystemsDatabasesDo) {
    EXPECT_EQ(UserName(0), "root");
    EXPECT_EQ(UserNumber("root"), 0u);
    EXPECT_EQ(GroupNumber(rootGroup()), 0u);
    EXPECT_EQ(UserName(kNobodysUser), std::nullopt);
    EXPECT_EQ(UserNumber("no-such-user"), std::nullopt);
    EXPECT_EQ(GroupNumber("no-such-group"), std::nullopt);
}

TEST(Accounts, TellAllGroupsOfAUserAndThePrimaryOne) {
    EXPECT_EQ(GroupsOf(kNobodysUser, 17), std::vector<gid_t>{17});
    const auto groups = GroupsOf(0, kNobodysGroup);
    EXPECT_TRUE(std::is_sorted(groups.begin(), groups.end()));
    EXPECT_EQ(std::count(groups.begin(), groups.end(), kNobodysGroup), 1);
    // Every group that names root as its member, whatever this system has.
    setgrent();
    while (const group* found = getgrent()) {
        for (char** member = found->gr_mem; *member; ++member) {
            if (std::string(*member) != "root") continue;
            EXPECT_EQ(std::count(groups.begin(), groups.end(), found->gr_gid), 1) << found->gr_name;
        }
    }
    endgrent();
}

}  // namespace oam::server::test
