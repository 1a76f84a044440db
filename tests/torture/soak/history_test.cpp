// The soak's own judgement: it must see what is lost, mixed or invented.
#include "history.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <deque>

#include "oam/codes.h"

namespace oam::torture {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class SoakHistory : public testing::Test {
  protected:
    Step& Add(Verb verb, const std::string& object, unsigned code = OAM_SUCCESS) {
        Step& step = steps_.emplace_back();
        step.verb = verb;
        std::snprintf(step.object, sizeof step.object, "%s", object.c_str());
        step.begun = places_;
        step.ended = places_ + 1;
        step.place = ++places_;
        step.code = code;
        return step;
    }
    Step& AddChange(std::uint64_t basis, std::uint64_t stamp, unsigned code = OAM_SUCCESS) {
        Step& step = Add(Verb::kChange, "A", code);
        step.basis = basis;
        step.stamp = stamp;
        return step;
    }
    // One that was never given a place.
    Step& AddRefused(Verb verb, unsigned code) {
        Step& step = Add(verb, "A", code);
        step.ended = --places_;
        step.place = 0;
        return step;
    }

    Verdict Judged() {
        Steps steps;
        for (const Step& step : steps_) steps.push_back(&step);
        return Judge({With(1)}, steps, saves_);
    }
    // One board "A" at that stamp.
    static Configuration With(std::uint64_t stamp) { return {{{"A", {1, stamp}}}, 0}; }

    Saves saves_;

  private:
    std::deque<Step> steps_;
    std::uint64_t places_ = 0;
};

TEST_F(SoakHistory, ExpectsEveryAcknowledgedChange) {
    AddChange(1, 2);
    AddChange(2, 3);
    EXPECT_THAT(Judged().possible, ElementsAre(With(3)));
    EXPECT_EQ(Judged().acknowledged, 2u);
}

TEST_F(SoakHistory, TakesAChangeThatWasUnderWayWhollyOrNotAtAll) {
    AddChange(1, 2);
    AddChange(2, 3, Step::kUnderWay);
    EXPECT_THAT(Judged().possible, UnorderedElementsAre(With(2), With(3)));
    EXPECT_EQ(Judged().underWay, 1u);
}

TEST_F(SoakHistory, HoldsAChangeThatAnotherClientHasReadForDone) {
    AddChange(1, 2, Step::kUnderWay);
    AddChange(2, 3);
    EXPECT_THAT(Judged().possible, ElementsAre(With(3)));
}

TEST_F(SoakHistory, SeesThatAChangeWasLostBetweenTwoClients) {
    AddChange(1, 2);
    AddChange(1, 3);
    EXPECT_THAT(Judged().fault, HasSubstr("cannot have happened"));
}

TEST_F(SoakHistory, FollowsABoardFromItsCreationThroughARenameToItsEnd) {
    Add(Verb::kCreate, "B").stamp = 5;
    Step& rename = Add(Verb::kChange, "B");
    rename.basis = 5;
    rename.stamp = 6;
    std::snprintf(rename.newName, sizeof rename.newName, "C");
    Configuration both = With(1);
    both.boards["C"] = {5, 6};
    EXPECT_THAT(Judged().possible, ElementsAre(both));
    Add(Verb::kDelete, "C");
    EXPECT_THAT(Judged().possible, ElementsAre(With(1)));
}

TEST_F(SoakHistory, PutsAnImportInThePlaceOfEverything) {
    saves_["save"] = With(7);
    AddChange(1, 2);
    Add(Verb::kImport, "save");
    EXPECT_THAT(Judged().possible, ElementsAre(With(7)));
    AddChange(7, 8);
    EXPECT_THAT(Judged().possible, ElementsAre(With(8)));
}

TEST_F(SoakHistory, TakesAnExportOfAnyMomentWhileItRan) {
    saves_["save"] = With(2);
    AddChange(1, 2);
    Step& save = AddRefused(Verb::kExport, OAM_SUCCESS);
    std::snprintf(save.object, sizeof save.object, "save");
    AddChange(2, 3);
    EXPECT_THAT(Judged().fault, IsEmpty());
    saves_["save"] = With(3);
    EXPECT_THAT(Judged().fault, HasSubstr("what never was"));
    save.ended += 1;
    EXPECT_THAT(Judged().fault, IsEmpty());
}

TEST_F(SoakHistory, KnowsWhyAStepMayBeRefused) {
    AddRefused(Verb::kChange, OAMERR_ACCESS_DENIED);
    EXPECT_THAT(Judged().fault, IsEmpty());
    Step& gone = AddRefused(Verb::kChange, OAMERR_NOT_FOUND);
    EXPECT_THAT(Judged().fault, HasSubstr("without a reason"));
    saves_["save"] = With(1);
    Add(Verb::kImport, "save");
    gone.ended += 1;
    EXPECT_THAT(Judged().fault, IsEmpty());
    AddRefused(Verb::kCreate, OAMERR_NOT_FOUND);
    EXPECT_THAT(Judged().fault, HasSubstr("without a reason"));
}

TEST_F(SoakHistory, SeesAnAcknowledgementOfWhatNeverHappened) {
    AddRefused(Verb::kDelete, OAM_SUCCESS);
    EXPECT_THAT(Judged().fault, HasSubstr("never happened"));
}

TEST_F(SoakHistory, SeesARefusalOfWhatHadBegun) {
    AddChange(1, 2, OAMERR_FILE_WRITE_ERROR);
    EXPECT_THAT(Judged().fault, HasSubstr("after it had begun"));
}

// A board, and the settings, as the living service tells them.
std::string digestOf(const test::Entries& marks) {
    std::string text = "A\n  Made=1\n  Name=A\n  Product=P\n";
    for (const auto& [name, value] : marks) text += "  " + name + '=' + value + '\n';
    text += "Supervisor\n";
    for (const char* setting : kSettingNames) text += std::string("  ") + setting + "=No\n";
    return text;
}

TEST(SoakConfiguration, IsReadFromADigest) {
    const Found found = FromDigest(digestOf(MarksOf(12)));
    EXPECT_EQ(found.fault, "");
    EXPECT_EQ(found.configuration, (Configuration{{{"A", {1, 12}}}, 0}));
    EXPECT_EQ(found.rest.at("made 1"), "  Product=P\n");
}

TEST(SoakConfiguration, ShowsHalfAChange) {
    test::Entries mixed = MarksOf(12);
    mixed.back() = MarksOf(13).back();
    EXPECT_THAT(FromDigest(digestOf(mixed)).fault, HasSubstr("half a change"));
    test::Entries cut = MarksOf(12);
    cut.pop_back();
    EXPECT_THAT(FromDigest(digestOf(cut)).fault, HasSubstr("has no Mark.Third"));
}

TEST(SoakConfiguration, IsReadFromAWholeExportOnly) {
    test::Entries board = {{"Made", "1"}, {"Name", "A"}, {"Product", "P"}};
    for (const auto& mark : MarksOf(12)) board.push_back(mark);
    const test::ObjectEntries supervisor = {"Supervisor", test::SupervisorEntries()};
    const std::string whole = test::ExportFile({{"A", board}, supervisor});
    EXPECT_EQ(FromExport(whole).fault, "");
    EXPECT_EQ(FromExport(whole).configuration, (Configuration{{{"A", {1, 12}}}, 0}));
    EXPECT_THAT(FromExport(whole.substr(0, whole.size() / 2)).fault, HasSubstr("not whole"));
}

}  // namespace
}  // namespace oam::torture
