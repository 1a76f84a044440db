#include "totals.h"

#include <gtest/gtest.h>

#include <string>

#include "torture/crash/points.h"

namespace oam::torture {
namespace {

class TellTotals : public testing::Environment {
  public:
    void TearDown() override {
        const Totals& totals = TheTotals();
        if (totals.kills + totals.visits == 0 || !testing::UnitTest::GetInstance()->Passed())
            return;
        TellFigures("shadow peers, " + std::to_string(totals.kills) + " kills, " +
                        std::to_string(totals.visits) + " foreign files",
                    "0 lost, 0 half, 0 stuck, 0 read outside");
    }
};

const auto* const kTellTotals = testing::AddGlobalTestEnvironment(new TellTotals);

}  // namespace

Totals& TheTotals() {
    static Totals totals;
    return totals;
}

}  // namespace oam::torture
