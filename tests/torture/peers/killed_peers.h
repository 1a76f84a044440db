// A process of the board shadow dies in the middle of a scenario, and others look at what is left.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "peer_files.h"
#include "scenario.h"
#include "survivor.h"
#include "totals.h"
#include "unit/platform/shared_directory.h"

namespace oam::torture {

class KilledPeers : public SharedDirectory, public testing::WithParamInterface<Scenario> {
  protected:
    void SetUp() override {
        if (GetParam().startsFromNothing) return;
        LeaveTable(kFirst);
        witness_ = std::make_unique<Witness>();
        ASSERT_EQ(witness_->Expects(kFirst), "");
    }

    // After a death: the next process, and the one that stayed.
    void LookAtSurvivors() {
        ASSERT_EQ(NextPeer(GetParam().possible, kNext), "");
        if (witness_ != nullptr) {
            ASSERT_EQ(witness_->Expects(kNext), "");
        }
        ASSERT_THAT(SharedFiles(), testing::ElementsAre(kSegmentFile, kJournalFile, kLockFile));
        ++deaths_;
        ++TheTotals().kills;
    }
    std::size_t Deaths() const { return deaths_; }

  private:
    std::unique_ptr<Witness> witness_;
    std::size_t deaths_ = 0;
};

}  // namespace oam::torture
