#include "table.h"

#include <gtest/gtest.h>

namespace oam::test {
namespace {

Table boards() { return {{{"number", "NUMBER", true}, {"name", "NAME"}, {"on", "ON"}}, {}}; }

}  // namespace

TEST(TableText, AlignsColumnsUnderTheirHeadings) {
    Table table = boards();
    table.rows.push_back({7u, "a", true});
    table.rows.push_back({12345678u, "a longer name", false});
    EXPECT_EQ(AsText(table),
              "  NUMBER  NAME           ON\n"
              "       7  a              yes\n"
              "12345678  a longer name  no\n");
}

TEST(TableText, PrintsItsHeadingsWhenThereAreNoRows) {
    EXPECT_EQ(AsText(boards()), "NUMBER  NAME  ON\n");
}

TEST(TableText, CountsCharactersInsteadOfBytes) {
    Table table = boards();
    table.rows.push_back({1u, "\xc3\xbc\xc3\xbc\xc3\xbc\xc3\xbc\xc3\xbc", true});
    EXPECT_EQ(AsText(table),
              "NUMBER  NAME   ON\n"
              "     1  \xc3\xbc\xc3\xbc\xc3\xbc\xc3\xbc\xc3\xbc  yes\n");
}

TEST(TableText, KeepsAForeignTextOnItsLine) {
    Table table = boards();
    table.rows.push_back({1u, "two\nlines\x1b[2J", true});
    EXPECT_EQ(AsText(table),
              "NUMBER  NAME               ON\n"
              "     1  two\\nlines\\x1b[2J  yes\n");
}

TEST(TableText, ShowsAnEmptyCellBetweenOthersAsADash) {
    Table table = boards();
    table.rows.push_back({1u, "", ""});
    EXPECT_EQ(AsText(table), "NUMBER  NAME  ON\n     1  -\n");
}

TEST(RecordText, AlignsTheValues) {
    const Record record{{{"a", "short", 1u}, {"b", "a long label", "value"}, {"c", "none", ""}}};
    EXPECT_EQ(AsText(record),
              "short         1\n"
              "a long label  value\n"
              "none\n");
}

TEST(TableJson, HasAnObjectForEachRow) {
    Table table = boards();
    table.rows.push_back({7u, "a", true});
    table.rows.push_back({8u, Cell(nullptr), false});
    EXPECT_EQ(JsonLine(AsJson(table)),
              R"([{"number":7,"name":"a","on":true},{"number":8,"name":null,"on":false}])");
}

TEST(TableJson, TakesTheValueOfACellAndNotItsText) {
    const Record record{{{"place", "place", Cell(Json{{"bus", 1}, {"slot", 2}}, "1:2")}}};
    EXPECT_EQ(JsonLine(AsJson(record)), R"({"place":{"bus":1,"slot":2}})");
    EXPECT_EQ(AsText(record), "place  1:2\n");
}

TEST(TableJson, ReplacesBytesThatAreNotUtf8) {
    Table table = boards();
    table.rows.push_back({1u, "caf\xe9", true});
    EXPECT_EQ(JsonLine(AsJson(table)), "[{\"number\":1,\"name\":\"caf\xef\xbf\xbd\",\"on\":true}]");
}

}  // namespace oam::test
