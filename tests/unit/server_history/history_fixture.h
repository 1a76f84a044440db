// An installation with data files and its history. What the history reports is seen through its
// entries.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "data_files.h"
#include "history/history.h"
#include "matchers.h"

namespace oam::server::test {

class HistoryTest : public ::testing::Test {
  protected:
    HistoryTest() { Reopen(); }

    // The daemon's next start.
    void Reopen() {
        history.reset();
        history = std::make_unique<History>(
            BookPath(), oam::Installation::Locate(home.Root()),
            [this](const std::string& text) { complaints.push_back(text); });
    }
    std::string BookPath() const { return home.Path("oam/oamd.db"); }

    Generation Record(const std::string& user = "ann", const std::string& action = "change") {
        return history->Record(user, action);
    }
    // Each as "2 ann change: Board 1", newest first.
    std::vector<std::string> Entries(const HistoryQuery& query = {}) {
        std::vector<std::string> texts;
        for (const HistoryEntry& entry : history->List(query))
            texts.push_back(std::to_string(entry.generation) + ' ' + entry.occasion.user + ' ' +
                            entry.occasion.action + ": " + entry.object);
        return texts;
    }
    std::vector<std::string> Objects(Generation generation) {
        std::vector<std::string> names;
        for (const ObjectVersion& version : history->State(generation))
            names.push_back(version.object);
        return names;
    }

    oam::test::Installation home;
    DataFiles files{home};
    std::vector<std::string> complaints;
    std::unique_ptr<History> history;
};

}  // namespace oam::server::test
