#include "fleet/names.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace oam::fleet {
namespace {

// What the engine takes as one token of a subject, and in a bucket's key.
bool isToken(const std::string& text) {
    return !text.empty() && text.find_first_not_of(
                                "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                "abcdefghijklmnopqrstuvwxyz"
                                "0123456789-_=") == text.npos;
}

TEST(FleetNames, APlainNameIsItsOwnToken) {
    EXPECT_EQ(TokenOf("rack-7_left"), "rack-7_left");
    EXPECT_EQ(NameOf("rack-7_left"), "rack-7_left");
}

TEST(FleetNames, WhatIsNotPlainIsEscaped) {
    EXPECT_EQ(TokenOf("r7.example.net"), "r7=2Eexample=2Enet");
    EXPECT_EQ(TokenOf(""), "=");
    EXPECT_EQ(TokenOf("a=b"), "a=3Db");
}

TEST(FleetNames, HostileNamesAreOneTokenAndComeBack) {
    const std::string names[] = {"",
                                 ".",
                                 "*",
                                 ">",
                                 "a.>",
                                 "oam.command.*",
                                 " ",
                                 "=",
                                 "==",
                                 "=2E",
                                 "$JS.API",
                                 std::string("\0", 1),
                                 std::string("a\0b", 3),
                                 "\r\nPUB x 0\r\n",
                                 "caf\xc3\xa9",
                                 "\xff\xfe",
                                 "_INBOX",
                                 std::string(300, '.')};
    std::set<std::string> tokens;
    for (const std::string& name : names) {
        const std::string token = TokenOf(name);
        EXPECT_TRUE(isToken(token)) << token;
        EXPECT_EQ(NameOf(token), name) << token;
        EXPECT_TRUE(tokens.insert(token).second) << token;
    }
}

TEST(FleetNames, EveryByteComesBack) {
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        std::string name(random() % 40, '\0');
        for (char& c : name) c = static_cast<char>(random());
        ASSERT_EQ(NameOf(TokenOf(name)), name);
    }
}

TEST(FleetNames, OnlyWhatTokenOfMakesIsAToken) {
    for (const char* const text :
         {"", "a.b", "a b", "a=", "a=2", "a=2e", "a=XY", "=41", "a*", ">", "a=2E=", "\xc3\xa9"})
        EXPECT_EQ(NameOf(text), std::nullopt) << text;
    // A token that reads as a name is the one that is made of it.
    std::mt19937 random(8);
    constexpr std::string_view kLetters = "aZ9-_=2EF.";
    for (int i = 0; i < 20000; ++i) {
        std::string token(1 + random() % 6, '\0');
        for (char& c : token) c = kLetters[random() % kLetters.size()];
        const auto name = NameOf(token);
        ASSERT_TRUE(!name || TokenOf(*name) == token) << token;
    }
}

TEST(FleetNames, ACommandSubjectTellsWhoAsksWhatOfWhom) {
    const std::string subject =
        CommandSubject("r7.example.net", "operator", "CN=noc.>", "StartBoard");
    EXPECT_EQ(subject, "oam.command.r7=2Eexample=2Enet.operator.CN=3Dnoc=2E=3E.StartBoard");
    const auto name = ParseCommandSubject(subject);
    ASSERT_TRUE(name);
    EXPECT_EQ(name->host, "r7.example.net");
    EXPECT_EQ(name->role, "operator");
    EXPECT_EQ(name->caller, "CN=noc.>");
    EXPECT_EQ(name->verb, "StartBoard");
}

TEST(FleetNames, WhatIsNoCommandSubjectIsRefused) {
    for (const char* const text :
         {"", "oam.command", "oam.command.", "oam.command.h.viewer.c", "oam.command.h.viewer.c.",
          "oam.command.h.viewer.c.V.more", "oam.command..viewer.c.V", "oam.command.h..c.V",
          "oam.command.h.viewer..V", "oam.alerts.h.viewer.c.V", "oam.command.h*.viewer.c.V"})
        EXPECT_FALSE(ParseCommandSubject(text)) << text;
}

TEST(FleetNames, AnAlertIsKnownByHostSeriesAndNumber) {
    EXPECT_EQ(AlertId("r7.net", 0, 42), "r7=2Enet+42");
    EXPECT_EQ(AlertId("r7.net", 2, 42), "r7=2Enet+42+2");
    EXPECT_EQ(AlertSubject("r7.net"), "oam.alerts.r7=2Enet");
    EXPECT_EQ(BucketSubject(kHostBucket, TokenOf("r7.net")), "$KV.oam_hosts.r7=2Enet");
    EXPECT_EQ(BucketStream(kHostBucket), "KV_oam_hosts");
}

}  // namespace
}  // namespace oam::fleet
