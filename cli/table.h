// What a command answers, before it is known how it will be shown: a table of rows, or a record of
// labelled values. The same answer is printed for people (AsText) and for programs (AsJson).
//
// A cell holds the value as programs want it and the text as people want it. By default the text is
// the value: a boolean is "yes" or "no", null is "-".
#pragma once

#include <concepts>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace oam {

using Json = nlohmann::ordered_json;

struct Cell {
    template <class T>
    requires std::constructible_from<Json, T> &&
        (!std::same_as<std::decay_t<T>, Cell>)Cell(T&& given)
        : Cell(Json(std::forward<T>(given)), std::string()) {
        text = TextOf(value);
    }
    Cell(Json given, std::string shown) : value(std::move(given)), text(std::move(shown)) {}

    static std::string TextOf(const Json& value);

    Json value;
    std::string text;
};

struct Column {
    const char* key;     // the member's name in JSON
    const char* title;   // the heading for people
    bool right = false;  // numbers stand right
};

struct Table {
    std::vector<Column> columns;
    std::vector<std::vector<Cell>> rows;
};

struct Record {
    struct Line {
        const char* key;
        const char* label;
        Cell cell;
    };
    std::vector<Line> lines;
};

// Aligned columns under headings, two blanks between them, no blank at a line's end. Cells are
// shown as foreign text. An empty cell that is not the last of its row is shown as "-": the next
// one would seem to stand in its place.
std::string AsText(const Table& table);
// One "label  value" line each.
std::string AsText(const Record& record);

// An array of objects, one for each row; an object.
Json AsJson(const Table& table);
Json AsJson(const Record& record);

// One value as text on one line, or on indented lines. A byte that is not UTF-8 becomes U+FFFD, so
// that a spoiled name never stops the output.
std::string JsonLine(const Json& value);
std::string JsonText(const Json& value);

}  // namespace oam
