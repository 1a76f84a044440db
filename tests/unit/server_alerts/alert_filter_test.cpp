#include "alerts/alert_filter.h"

#include <gtest/gtest.h>

#include "alerts.h"

namespace oam::server {
namespace {

const StoredAlert kAlert = AlertOf("Fan 2 stands still", OAMEVN_ALERT, "Board 1", OAM_WARNING);

TEST(AlertFilter, AnEmptyOneLetsEverythingThrough) {
    EXPECT_TRUE(AlertFilter{}.Matches(kAlert));
    EXPECT_TRUE(AlertFilter{}.Matches(StoredAlert{}));
}

TEST(AlertFilter, AsksForOneOfItsCodes) {
    AlertFilter filter;
    filter.codes = {OAMEVN_TRACE, OAMEVN_ALERT};
    EXPECT_TRUE(filter.Matches(kAlert));
    filter.codes = {OAMEVN_TRACE};
    EXPECT_FALSE(filter.Matches(kAlert));
}

TEST(AlertFilter, AsksForASeverityAtLeast) {
    AlertFilter filter;
    filter.leastSeverity = OAM_INFORMATION;
    EXPECT_TRUE(filter.Matches(kAlert));
    filter.leastSeverity = OAM_WARNING;
    EXPECT_TRUE(filter.Matches(kAlert));
    filter.leastSeverity = OAM_ERROR;
    EXPECT_FALSE(filter.Matches(kAlert));
}

TEST(AlertFilter, AnySeverityButTheFirstTwoIsAnError) {
    AlertFilter filter;
    filter.leastSeverity = OAM_ERROR;
    EXPECT_TRUE(filter.Matches(AlertOf("", OAMEVN_ALERT, "", 2)));
    EXPECT_TRUE(filter.Matches(AlertOf("", OAMEVN_ALERT, "", 77)));
    filter.leastSeverity = 77;
    EXPECT_TRUE(filter.Matches(AlertOf("", OAMEVN_ALERT, "", 2)));
    EXPECT_FALSE(filter.Matches(AlertOf("", OAMEVN_ALERT, "", OAM_WARNING)));
}

TEST(AlertFilter, ComparesSourcesWithoutRegardToCaseAndWhole) {
    AlertFilter filter;
    filter.source = "BOARD 1";
    EXPECT_TRUE(filter.Matches(kAlert));
    filter.source = "Board";
    EXPECT_FALSE(filter.Matches(kAlert));
    filter.source = "Board 12";
    EXPECT_FALSE(filter.Matches(kAlert));
}

TEST(AlertFilter, LooksForAPartOfTheText) {
    AlertFilter filter;
    filter.textPart = "2 stands";
    EXPECT_TRUE(filter.Matches(kAlert));
    filter.textPart = "fan";
    EXPECT_FALSE(filter.Matches(kAlert));
}

TEST(AlertFilter, WantsAllThatItAsksForAtOnce) {
    AlertFilter filter;
    filter.codes = {OAMEVN_ALERT};
    filter.source = "board 1";
    filter.textPart = "Fan";
    filter.leastSeverity = OAM_WARNING;
    EXPECT_TRUE(filter.Matches(kAlert));
    filter.source = "board 2";
    EXPECT_FALSE(filter.Matches(kAlert));
}

}  // namespace
}  // namespace oam::server
