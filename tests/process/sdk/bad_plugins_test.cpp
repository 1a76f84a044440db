// Every rule, on a plug-in that breaks it and nothing else.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "judgement.h"
#include "package.h"

using oam::test::BadPlugin;
using oam::test::Judge;
using testing::Contains;
using testing::HasSubstr;

namespace {

struct Fault {
    const char* plugin;
    const char* rule;
    const char* entry;  // null: the file as a whole
    const char* seen = "";
};

// Short enough to wait for a plug-in that hangs at every turn.
#define HANG_SECONDS "8"
constexpr const char* kShort = HANG_SECONDS;
#ifdef OAM_SANITIZED
// Long enough for one that does not, on a machine with more to do.
constexpr const char* kLong = "60";
#else
constexpr const char* kLong = kShort;
#endif

class FaultyPlugin : public testing::TestWithParam<Fault> {};

TEST_P(FaultyPlugin, IsFoundByTheRuleThatItBreaksAndByNoOther) {
    const Fault& fault = GetParam();
    const bool hangs = fault.rule == std::string("returns");
    const auto judgement = Judge(BadPlugin(fault.plugin), {"--timeout", hangs ? kShort : kLong});
    EXPECT_EQ(judgement.status, 1);
    EXPECT_EQ(judgement.report["passed"], false);
    EXPECT_EQ(judgement.Broken(), std::set<std::string>{fault.rule}) << judgement.report.dump(2);
    if (fault.entry != nullptr) {
        EXPECT_THAT(judgement.Seen(fault.rule, fault.entry), Contains(HasSubstr(fault.seen)))
            << judgement.report.dump(2);
    }
}

constexpr Fault kFaults[] = {
    {"missing_entry", "entries", "StopBoard", "not exported"},
    {"missing_symbol", "undefined", nullptr},
    {"missing_library", "loads", nullptr},
    {"leaked_symbol", "exports", nullptr},
    {"crash_without_buffer", "crash", "GetKeyword", "no buffer: "},
    {"dies_behind_exit", "crash", "StartBoard", "\"gone\": "},
    {"waits_for_own_thread", "returns", "OpenObject", "own thread waits in _oamOpenObject"},
    {"hangs_in_stop", "returns", "StopBoard", "no answer within " HANG_SECONDS "000 ms"},
    {"ends_process", "ends-process", "TestBoard", "it ended the process"},
    {"throws", "throws", "StartBoard", "\"no firmware\""},
    {"leaks_handle", "open-handles", "StartBoard", "it left \"D"},
    {"uses_no_handle", "handles", "StartBoard", "_oamDbGetKeyword"},
    {"closes_lent_handle", "handles", "CloseObject", "_oamDbCloseObject"},
    {"keeps_provider_mode", "provider-mode", "SetKeyword", "on"},
    {"spoiled_alert", "alert-record", "StartBoard", "24 bytes"},
    {"alert_storm", "alert-storm", "AlertReceive", "8 times"},
    {"overruns_buffer", "overrun", "GetKeyword", "behind the buffer"},
    {"touches_short_buffer", "untouched", "GetKeyword", "OAMERR_NOT_ENOUGH_MEMORY"},
    {"closes_no_text", "unterminated", "GetKeyword", "closed no text"},
    {"cuts_texts", "fits", "GetKeyword", "success for"},
    {"denies_existence", "existence", "GetKeyword", "OAMERR_NOT_FOUND without a buffer"},
    {"changing_texts", "static-texts", "GetText", "is \"DEMO_1\""},
    {"text_for_everything", "foreign-texts", "GetText", "OAMERR_NOT_FOUND"},
    {"fails_init", "init", "Init", "OAMERR_OPEN_DRIVER_FAIL"},
    {"fails_second_init", "init-again", "Init", "OAMERR_PLUGIN_INIT_FAIL"},
    {"unbounded_count", "counts", "GetKeyword", "\"2000000000\""},
    {"counts_too_many", "counts", "GetKeyword", "Products[1]"},
    {"nameless_product", "products", nullptr},
    {"detects_foreign_boards", "detected", "DetectBoards", "\"XEMO-1\""},
    {"creates_nothing", "creates", "CreateBoard", "OAMERR_CREATE_BOARD_FAIL"},
    {"minds_the_case", "readable", "GetKeyword", "\"GAIN\""},
    {"answers_unknown_keywords", "unknown", "GetKeyword", "No.Such.Keyword"},
    {"senseless_qualifiers", "qualifiers", "GetQualifier", "\"Perhaps\""},
    {"changes_read_only", "read-only", "SetKeyword", "\"Firmware\""},
    {"accepts_out_of_range", "range", "SetKeyword", "\"Gain\" to \"13\" was accepted"},
    {"ignores_choices", "choices", "SetKeyword", "\"no such choice\""},
    {"refuses_good_values", "accepts", "SetKeyword", "\"Gain\" to \"12\" was refused"},
    {"forgets_values", "kept-value", "SetKeyword", "now it is \"0\""},
    {"stores_unstorable", "storable", "SetKeyword", "\"a<b\""},
    {"changes_qualifiers", "fixed-qualifiers", "SetKeyword", "\"Gain?Max\""},
    {"ignores_database", "database-failure", "SetKeyword", "it answered success"},
    {"knows_old_names", "renamed", "StartBoard", "then renamed"},
};

INSTANTIATE_TEST_SUITE_P(Each, FaultyPlugin, testing::ValuesIn(kFaults),
                         [](const auto& row) { return std::string(row.param.plugin); });

}  // namespace
