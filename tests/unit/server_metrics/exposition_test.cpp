// The text format, byte for byte.
#include "metrics/exposition.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

namespace oam::server {
namespace {

using Kind = Exposition::Kind;

TEST(Exposition, TellsAFamilyWithItsSamples) {
    Exposition out;
    out.Family("x_total", Kind::kCounter, "What it is.");
    out.Sample({{"a", "1"}, {"b", "two"}}, 3);
    out.Sample(0.25);
    EXPECT_EQ(out.Text(),
              "# HELP x_total What it is.\n# TYPE x_total counter\n"
              "x_total{a=\"1\",b=\"two\"} 3\nx_total 0.25\n");
}

TEST(Exposition, EscapesLabels) {
    Exposition out;
    out.Family("x", Kind::kGauge, "h");
    out.Sample({{"a", "q\"b\\n\nend"}}, 1);
    EXPECT_NE(out.Text().find("x{a=\"q\\\"b\\\\n\\nend\"} 1\n"), std::string::npos) << out.Text();
}

TEST(Exposition, CountsAHistogramsBucketsUp) {
    Histogram histogram;
    for (const double seconds : {0.001, 0.01, 0.02, 7.0, 1000.0}) histogram.Observe(seconds);
    Exposition out;
    out.Family("d", Kind::kHistogram, "h");
    out.Sample({{"o", "x"}}, histogram);
    const std::string text = out.Text();
    for (const char* line :
         {"d_bucket{o=\"x\",le=\"0.01\"} 2\n", "d_bucket{o=\"x\",le=\"0.05\"} 3\n",
          "d_bucket{o=\"x\",le=\"5\"} 3\n", "d_bucket{o=\"x\",le=\"10\"} 4\n",
          "d_bucket{o=\"x\",le=\"300\"} 4\n", "d_bucket{o=\"x\",le=\"+Inf\"} 5\n",
          "d_sum{o=\"x\"} 1007.031\n", "d_count{o=\"x\"} 5\n"})
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
}

TEST(Exposition, TellsASummary) {
    Exposition out;
    out.Family("s", Kind::kSummary, "h");
    out.Sample({{"o", "x"}}, 3, 1.5);
    EXPECT_NE(out.Text().find("s_sum{o=\"x\"} 1.5\ns_count{o=\"x\"} 3\n"), std::string::npos);
}

TEST(Exposition, TellsNumbersThatAreHardToTell) {
    Exposition out;
    out.Family("n", Kind::kGauge, "h");
    out.Sample(std::numeric_limits<double>::infinity());
    out.Sample(1e21);
    out.Sample(9007199254740991.0);
    EXPECT_NE(out.Text().find("n +Inf\nn 1e+21\nn 9007199254740991\n"), std::string::npos)
        << out.Text();
}

}  // namespace
}  // namespace oam::server
