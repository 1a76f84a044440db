// The kit's keyword rules and computed arrays.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "kit/computed_array.h"
#include "kit/keyword_rule.h"

namespace oam::kit {
namespace {

using ::testing::ElementsAre;
using ::testing::Optional;
using ::testing::Pair;

TEST(KitKeywordRule, TellsItsQualifiers) {
    EXPECT_THAT(qualifiersOf(numberRule("Count", 3, 0, 9, "how many")),
                ElementsAre(Pair("Type", "Integer"), Pair("ReadOnly", "No"),
                            Pair("Description", "how many"), Pair("Min", "0"), Pair("Max", "9")));
    EXPECT_THAT(
        qualifiersOf({.name = "On", .choices = {"Yes", "No"}, .isReadOnly = true}),
        ElementsAre(Pair("Type", "String"), Pair("ReadOnly", "Yes"), Pair("Choices.Count", "2"),
                    Pair("Choices[0]", "Yes"), Pair("Choices[1]", "No")));
}

TEST(KitKeywordRule, AcceptsNumbersInItsRangeWithoutLeadingZeros) {
    const auto rule = numberRule("Count", {}, -2, 9, "");
    EXPECT_THAT(acceptedValue(rule, "007"), Optional(std::string("7")));
    EXPECT_THAT(acceptedValue(rule, "-2"), Optional(std::string("-2")));
    for (const char* bad : {"", "10", "-3", "7 ", "x"}) {
        EXPECT_EQ(acceptedValue(rule, bad), std::nullopt) << bad;
    }
}

TEST(KitKeywordRule, AcceptsChoicesInAnyCaseAndSpellsThemItsWay) {
    const KeywordRule rule = {.name = "On", .choices = {"Yes", "No"}};
    EXPECT_THAT(acceptedValue(rule, "yES"), Optional(std::string("Yes")));
    EXPECT_EQ(acceptedValue(rule, "Ye"), std::nullopt);
}

TEST(KitKeywordRule, AcceptsWhatFitsAndCanBeKept) {
    const KeywordRule rule = {
        .name = "Path", .fits = [](std::string_view value) { return value.starts_with('/'); }};
    EXPECT_THAT(acceptedValue(rule, "/a"), Optional(std::string("/a")));
    EXPECT_EQ(acceptedValue(rule, "a"), std::nullopt);
    EXPECT_EQ(acceptedValue(rule, "/a<b"), std::nullopt);
    EXPECT_EQ(acceptedValue({.name = "Object", .type = "Object"}, "x.bpi"), std::nullopt);
}

struct Point {
    int x;
    int y;
};

constexpr std::array kMembers = {
    ComputedMember<Point>{".X", "Integer", "to the right",
                          [](const Point& point) { return std::to_string(point.x); }},
    ComputedMember<Point>{".Deep.Y", "Integer", "upwards",
                          [](const Point& point) { return std::to_string(point.y); }},
};
constexpr ComputedArray<Point> kPoints("Points", "all points", kMembers);

constexpr std::array kNameMembers = {ComputedMember<std::string>{
    "", "Object", "a name", [](const std::string& name) { return name; }}};
constexpr ComputedArray<std::string> kNames("Names", "all names", kNameMembers);

std::optional<std::string> valueOf(std::string_view keyword) {
    return kPoints.Value(keyword, 2, [](std::size_t index) -> std::optional<Point> {
        if (index == 1) return {};
        return Point{.x = 3, .y = 4};
    });
}

TEST(KitComputedArray, AnswersItsCountAndMembers) {
    EXPECT_THAT(valueOf("points.COUNT"), Optional(std::string("2")));
    EXPECT_THAT(valueOf("Points[0].X"), Optional(std::string("3")));
    EXPECT_THAT(valueOf("Points[0].deep.y"), Optional(std::string("4")));
}

TEST(KitComputedArray, AnswersNothingElse) {
    for (const char* other : {"Points", "Points[0]", "Points[0].Z", "Points[1].X", "Points[2].X",
                              "Points[0].X.Y", "Points.Counts", "Point[0].X"}) {
        EXPECT_EQ(valueOf(other), std::nullopt) << other;
    }
}

TEST(KitComputedArray, HoldsItsWholeFamily) {
    for (const char* own : {"Points", "points.Count", "Points[99].Z", "Points.Anything"}) {
        EXPECT_TRUE(kPoints.Holds(own)) << own;
    }
    for (const char* other : {"", "Point", "PointsX", "Names"}) {
        EXPECT_FALSE(kPoints.Holds(other)) << other;
    }
}

TEST(KitComputedArray, TellsItsShapeInQualifiers) {
    const auto told = [](const char* keyword, const char* qualifier) {
        return kPoints.Qualifier(keyword, qualifier, 1).value_or("(none)");
    };
    EXPECT_EQ(told("Points", "Type"), "Array");
    EXPECT_EQ(told("Points", "Description"), "all points");
    EXPECT_EQ(told("Points.Count", "Type"), "Integer");
    EXPECT_EQ(told("Points[0]", "Type"), "Struct");
    EXPECT_EQ(told("Points[0]", "Keywords.Count"), "2");
    EXPECT_EQ(told("Points[0]", "Keywords[1]"), "Points[0].Deep.Y");
    EXPECT_EQ(told("Points[0]", "Keywords[2]"), "(none)");
    EXPECT_EQ(told("Points[0].X", "type"), "Integer");
    EXPECT_EQ(told("Points[0].X", "ReadOnly"), "Yes");
    EXPECT_EQ(told("Points[0].X", "Keywords.Count"), "(none)");
    EXPECT_EQ(told("Points[0].X", "Max"), "(none)");
    EXPECT_EQ(told("Points[1]", "Type"), "(none)");
    EXPECT_EQ(told("Points[0].Z", "Type"), "(none)");
}

TEST(KitComputedArray, MayHaveElementsThatAreValues) {
    const auto at = [](std::size_t) { return std::make_optional<std::string>("one"); };
    EXPECT_THAT(kNames.Value("Names[0]", 1, at), Optional(std::string("one")));
    EXPECT_EQ(kNames.Qualifier("Names[0]", "Type", 1), "Object");
    EXPECT_EQ(kNames.Qualifier("Names[0]", "Keywords.Count", 1), std::nullopt);
}

TEST(KitComputedArray, IsFoundThroughAListOfKeywords) {
    EXPECT_EQ(keywordListQualifier({"A", "B"}, "keywords.count"), "2");
    EXPECT_EQ(keywordListQualifier({"A", "B"}, "Keywords[1]"), "B");
    EXPECT_EQ(keywordListQualifier({"A", "B"}, "Keywords[2]"), std::nullopt);
    EXPECT_EQ(keywordListQualifier({"A", "B"}, "Keywords[1].X"), std::nullopt);
    EXPECT_EQ(keywordListQualifier({"A", "B"}, "Type"), std::nullopt);
}

}  // namespace
}  // namespace oam::kit
