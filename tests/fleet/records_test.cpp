#include "fleet/records.h"

#include <gtest/gtest.h>

namespace oam::fleet {
namespace {

HostRecord someHost() {
    HostRecord record;
    record.host = "r7.example.net";
    record.version = "1.0.0";
    record.api = "oam.v1";
    record.directory = "/opt/oam \xff";
    record.started = "2026-03-01T12:00:00.000Z";
    record.running = true;
    record.boards = 3;
    record.agent = "1.0.0";
    record.position = {1777777777777777777, 2, 0xFFFFFFFFFFFFFFFFU};
    return record;
}

TEST(FleetRecords, AHostComesBackAsItWas) { EXPECT_EQ(ReadHost(ToText(someHost())), someHost()); }

TEST(FleetRecords, BoardsComeBackAsTheyWere) {
    BoardRecord plain;
    plain.name = "Sim E1 \xff left";
    plain.number = 4;
    plain.product = "SIM-E1";
    plain.state = "started";
    plain.tone = "good";
    plain.pci = {1, 7};
    BoardRecord full = plain;
    full.shelf = BoardPlaceOf{2, 0};
    full.serialNumber = "\"1\n";
    full.outcome = BoardOutcome{"start", "failed", "2026-03-01T12:00:00.000Z", "\x80 no"};
    const BoardsRecord record{"h", {plain, full}};
    EXPECT_EQ(ReadBoards(ToText(record)), record);
    const BoardsRecord none{"h", {}};
    EXPECT_EQ(ReadBoards(ToText(none)), none);
}

TEST(FleetRecords, ABeatTellsHowTheDaemonIs) {
    for (const auto daemon : {Beat::Daemon::kAnswering, Beat::Daemon::kSilent, Beat::Daemon::kAway,
                              Beat::Daemon::kEnded}) {
        const Beat beat{"h",  17,     "2026-03-01T12:00:00.000Z",
                        1000, daemon, "2026-03-01T11:00:00.000Z"};
        const Beat read = ReadBeat(ToText(beat));
        EXPECT_EQ(read.host, beat.host);
        EXPECT_EQ(read.sequence, 17U);
        EXPECT_EQ(read.sent, beat.sent);
        EXPECT_EQ(read.interval, 1000U);
        EXPECT_EQ(read.daemon, daemon);
        EXPECT_EQ(read.since, beat.since);
    }
}

TEST(FleetRecords, AnAlertTellsBehindWhichNumberItsHostGoesOn) {
    const Json alert{{"sequence", 42}, {"code", 3}, {"text", {{"base64", "/w=="}}}};
    const AlertRecord read = ReadAlert(AlertText("h", 1, alert));
    EXPECT_EQ(read.kind, AlertRecord::Kind::kAlert);
    EXPECT_EQ(read.host, "h");
    EXPECT_EQ(read.series, 1U);
    EXPECT_EQ(read.sequence, 42U);
    EXPECT_EQ(read.alert["text"], alert["text"]);

    const AlertRecord gap = ReadAlert(GapText("h", 0, 5, 9));
    EXPECT_EQ(gap.kind, AlertRecord::Kind::kGap);
    EXPECT_EQ(gap.first, 5U);
    EXPECT_EQ(gap.sequence, 9U);

    const AlertRecord restart = ReadAlert(RestartText("h", 3, 77));
    EXPECT_EQ(restart.kind, AlertRecord::Kind::kRestart);
    EXPECT_EQ(restart.series, 3U);
    EXPECT_EQ(restart.sequence, 0U);
}

TEST(FleetRecords, WhatALaterVersionAddsIsPassedOver) {
    EXPECT_EQ(ReadHost(R"({"schema":2,"host":"h","later":[1],"boards":"many"})").host, "h");
    EXPECT_EQ(ReadBoards(R"({"host":"h","boards":[{"name":"b","later":1},7]})").boards.size(), 1U);
}

TEST(FleetRecords, WhatIsNoRecordIsSaid) {
    for (const char* const text : {"", "x", "[]", "{}", "\xff", R"({"schema":1})"}) {
        EXPECT_THROW((void)ReadHost(text), BadRecord) << text;
        EXPECT_THROW((void)ReadBoards(text), BadRecord) << text;
        EXPECT_THROW((void)ReadBeat(text), BadRecord) << text;
        EXPECT_THROW((void)ReadAlert(text), BadRecord) << text;
    }
    EXPECT_THROW((void)ReadBoards(R"({"host":"h"})"), BadRecord);
    EXPECT_THROW((void)ReadBeat(R"({"host":"h","daemon":"merry"})"), BadRecord);
    EXPECT_THROW((void)ReadAlert(R"({"host":"h"})"), BadRecord);
    EXPECT_THROW((void)ReadAlert(R"({"host":"h","gap":1})"), BadRecord);
}

}  // namespace
}  // namespace oam::fleet
