// A book of operations, and the service that tells it what happened.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "alerts.h"
#include "operations/operation_book.h"

namespace oam::server {

class Operations : public testing::Test {
  protected:
    std::string Begin(const std::string& board, OperationKind kind = OperationKind::kStart) {
        return book_.Begin(kind, board, "root").id;
    }
    // The identity whose outcome it is; numbered as the daemon does.
    std::string Tell(const StoredAlert& alert) {
        const std::string id = book_.OnAlert(alert);
        if (!id.empty()) book_.Number(id, ++sequence_);
        return id;
    }
    std::string TellStarted(const std::string& board) {
        return Tell(OutcomeOf(OAMEVN_STARTBOARD_DONE, board, "Board is started.\n"));
    }
    std::string TellBeingStarted(const std::string& board) {
        return Tell(OutcomeOf(OAMEVN_STARTBOARD_DONE, board, "Board is currently being started.",
                              OAM_ERROR));
    }
    void Rename(const std::string& from, const std::string& to) {
        EXPECT_EQ(Tell(AlertOf(from, OAMEVN_RENAMED, to)), "");
    }
    OperationState StateOf(const std::string& id) { return book_.Find(id)->state; }
    std::vector<std::string> Listed(bool runningOnly = false, const std::string& board = {}) {
        std::vector<std::string> ids;
        for (const OperationRecord& record : book_.List(runningOnly, board))
            ids.push_back(record.id);
        return ids;
    }

    OperationBook book_{7, 3};
    std::uint64_t sequence_ = 100;
};

}  // namespace oam::server
