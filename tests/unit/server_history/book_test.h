// A book of its own, and changes to be written into it.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "data_files.h"
#include "history/configuration_state.h"
#include "history/history_book.h"
#include "history/history_pages.h"

namespace oam::server::test {

class BookTest : public ::testing::Test {
  protected:
    using Kind = ObjectDifference::Kind;

    static ObjectChange Created(const std::string& object) {
        return {object,
                {},
                object + ".xmo",
                Kind::kCreated,
                BoardFile(object),
                {{"Name", std::nullopt, object}}};
    }
    static ObjectChange Changed(const std::string& object, const std::string& number) {
        return {object,
                {},
                object + ".xmo",
                Kind::kChanged,
                BoardFile(object, {{"Number", number}}),
                {{"Number", "0", number}}};
    }
    static ObjectChange Deleted(const std::string& object) {
        return {object, {}, object + ".xmo", Kind::kDeleted, {}, {{"Name", object, std::nullopt}}};
    }

    Generation Write(const std::vector<ObjectChange>& changes,
                     const Occasion& occasion = {"ann", "change", ""}) {
        std::vector<Commit> commits{{occasion, changes, {}, 0}};
        book.Write(&commits, {});
        return commits[0].generation;
    }
    std::vector<HistoryEntry> List(const HistoryQuery& query) {
        return ReadHistory(database, query);
    }
    // "A", "B=7": the objects of a generation with their numbers.
    std::vector<std::string> State(Generation generation) {
        std::vector<std::string> objects;
        for (const ObjectVersion& version : ReadState(database, generation)) {
            const Keywords keywords = KeywordsOf(version.bytes);
            const auto number = keywords.find("Number");
            objects.push_back(version.object +
                              (number == keywords.end() ? "" : "=" + number->second));
        }
        return objects;
    }
    std::int64_t Rows(const char* question) {
        Statement rows(database, question);
        (void)rows.Step();
        return rows.Number(0);
    }

    oam::test::Installation home;
    Database database{home.Path("oam/oamd.db")};
    HistoryBook book{database};
};

}  // namespace oam::server::test
