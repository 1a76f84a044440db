#include "detected_boards.h"

#include <gtest/gtest.h>

namespace oam::sim {
namespace {

TEST(DetectedBoards, AreNoneBeforeTheFirstDetection) {
    const DetectedBoards detected;
    EXPECT_EQ(detected.Get("DetectedBoards.Count"), "0");
    EXPECT_FALSE(detected.Get("DetectedBoards[0].Name"));
}

TEST(DetectedBoards, AnswerTheirKeywordsInAnyCase) {
    DetectedBoards detected;
    detected.Replace({{"Left", "E1", {1, 2}}, {"Right", "IP", {3, 4}}});
    EXPECT_EQ(detected.Get("detectedboards.count"), "2");
    EXPECT_EQ(detected.Get("DetectedBoards[1].Name"), "Right");
    EXPECT_EQ(detected.Get("DetectedBoards[1].product"), "IP");
    EXPECT_EQ(detected.Get("DetectedBoards[1].Location.PCI.Bus"), "3");
    EXPECT_EQ(detected.Get("DetectedBoards[1].Location.PCI.Slot"), "4");
}

TEST(DetectedBoards, HaveNothingButTheirKeywords) {
    DetectedBoards detected;
    detected.Replace({{"Left", "E1", {1, 2}}});
    for (const auto* keyword :
         {"", "Detected", "DetectedBoards", "DetectedBoards[", "DetectedBoards[]",
          "DetectedBoards[].Name", "DetectedBoards[1].Name", "DetectedBoards[-1].Name",
          "DetectedBoards[0]", "DetectedBoards[0].Serial", "DetectedBoards[0.Name",
          "DetectedBoards]0[.Name", "DetectedBoards[99999999999999999999].Name", "Products.Count",
          "DetectedBoards.Count.Count"}) {
        EXPECT_FALSE(detected.Get(keyword)) << keyword;
        EXPECT_FALSE(detected.GetQualifier(keyword, "Type")) << keyword;
    }
}

TEST(DetectedBoards, HoldTheirWholeFamilyAndNothingElse) {
    EXPECT_TRUE(DetectedBoards::Holds("DetectedBoards"));
    EXPECT_TRUE(DetectedBoards::Holds("DETECTEDBOARDS[7].Anything"));
    EXPECT_FALSE(DetectedBoards::Holds("DetectedBoardsOfOld.Count"));
    EXPECT_FALSE(DetectedBoards::Holds("Detected"));
}

TEST(DetectedBoards, AreReadOnlyAndHaveTheirTypes) {
    DetectedBoards detected;
    detected.Replace({{"Left", "E1", {1, 2}}});
    EXPECT_EQ(detected.GetQualifier("DetectedBoards.Count", "ReadOnly"), "Yes");
    EXPECT_EQ(detected.GetQualifier("DetectedBoards.Count", "Type"), "Integer");
    EXPECT_EQ(detected.GetQualifier("DetectedBoards[0].Name", "type"), "String");
    EXPECT_EQ(detected.GetQualifier("DetectedBoards[0].Location.PCI.Bus", "Type"), "Integer");
    EXPECT_FALSE(detected.GetQualifier("DetectedBoards[0].Name", "Max"));
}

}  // namespace
}  // namespace oam::sim
