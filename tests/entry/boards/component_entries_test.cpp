// Components without one of their entries, and what a component that cannot be loaded stops.
#include "boards.h"
#include "module_log.h"

namespace oam::test {

namespace {

using ::testing::IsEmpty;

class ComponentFailures : public ServiceTest {};

TEST_F(ComponentFailures, StopTheStartBeforeThePluginsAreLoaded) {
    AddPlugin("rec.bpi");
    home.Write("lib/text.emc", "not a library");
    EXPECT_EQ(_oamInit(), kCannotLoad);
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

class ComponentEntry : public ServiceTest, public testing::WithParamInterface<const char*> {};

TEST_P(ComponentEntry, StopsTheStartWhenItIsMissing) {
    home.AddModule(std::string("without_") + GetParam() + ".emc", "rec.emc");
    EXPECT_EQ(_oamInit(), kNoSymbol);
    EXPECT_EQ(StageLines(home.Read("oam/log/startup.log"), kComponentStage),
              LoadingLine("Emc", home.Path("lib/rec.emc")) + FailedLine("Emc", kNoSymbol));
    EXPECT_EQ(recorder.Count("Init"), 0u);
}

// The entries are bound in order, Exit second; a component is ended when its Exit was bound.
TEST_P(ComponentEntry, IsBoundAfterExitWhichIsThenCalled) {
    home.AddModule(std::string("without_") + GetParam() + ".emc", "rec.emc");
    EXPECT_EQ(_oamInit(), kNoSymbol);
    const std::string missing = GetParam();
    EXPECT_EQ(recorder.Count("Exit"), missing == "Init" || missing == "Exit" ? 0u : 1u);
}

INSTANTIATE_TEST_SUITE_P(Of9, ComponentEntry,
                         testing::Values("Init", "Exit", "GetText", "AlertReceive", "OpenObject",
                                         "CloseObject", "SetKeyword", "GetKeyword", "GetQualifier"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace

}  // namespace oam::test
