#include "board_output.h"

#include "failure.h"

namespace oam::shadow {
namespace {

struct Field {
    const char* key;
    const char* title;
    Json (*get)(const Board& board);
    bool isNumber = false;
};

constexpr Field kFields[] = {
    {"name", "NAME", [](const Board& board) { return Json(board.name); }},
    {"number", "NUMBER", [](const Board& board) { return Json(board.number); }, true},
    {"driverName", "DRIVER", [](const Board& board) { return Json(board.driverName); }},
    {"driverBoardId", "DRIVER ID", [](const Board& board) { return Json(board.driverBoardId); }},
    {"aLaw", "A-LAW", [](const Board& board) { return Json(board.isALaw); }},
};

Json boardJson(const Board& board) { return AsJson(boardRecord(board)); }

const char* wordOf(Change change) {
    switch (change) {
        case Change::kAdded:
            return "added";
        case Change::kRemoved:
            return "removed";
        case Change::kRenamed:
            return "renamed";
        case Change::kChanged:
            return "changed";
        case Change::kVxPlugin:
            return "vxplugin";
    }
    return "";
}

std::string shownValue(const Json& value) {
    return value.is_string() ? Quoted(value.get<std::string>()) : Cell::TextOf(value);
}

// "driverName "a" -> "b", number 1 -> 2"; the name is told as a rename.
std::string changedFields(const Board& before, const Board& after) {
    std::string text;
    for (const Field& field : kFields) {
        const Json earlier = field.get(before);
        const Json later = field.get(after);
        if (earlier == later || field.key == std::string("name")) continue;
        if (!text.empty()) text += ", ";
        text += std::string(field.key) + ' ' + shownValue(earlier) + " -> " + shownValue(later);
    }
    return text;
}

std::string boardText(const Board& board) {
    return std::to_string(board.number) + ": " + Quoted(board.name);
}

std::string whatChanged(const Difference& difference) {
    switch (difference.change) {
        case Change::kAdded:
            return boardText(difference.after);
        case Change::kRemoved:
            return boardText(difference.before);
        case Change::kRenamed:
            return boardText(difference.before) + " -> " + Quoted(difference.after.name);
        case Change::kChanged:
            return boardText(difference.after) + ' ' +
                   changedFields(difference.before, difference.after);
        case Change::kVxPlugin:
            return Cell::TextOf(difference.isUsingVxPlugin);
    }
    return "";
}

}  // namespace

oam::Table boardRows(const std::vector<Board>& boards) {
    oam::Table table;
    for (const Field& field : kFields)
        table.columns.push_back({field.key, field.title, field.isNumber});
    for (const Board& board : boards) {
        auto& row = table.rows.emplace_back();
        for (const Field& field : kFields) row.emplace_back(field.get(board));
    }
    return table;
}

Record boardRecord(const Board& board) {
    Record record;
    for (const Field& field : kFields)
        record.lines.push_back({field.key, field.title, field.get(board)});
    return record;
}

std::string lineOf(const Difference& difference) {
    return std::string(wordOf(difference.change)) + ' ' + whatChanged(difference);
}

Json jsonOf(const Difference& difference) {
    Json object{{"event", wordOf(difference.change)}};
    if (difference.change == Change::kVxPlugin) {
        object["usingVxPlugin"] = difference.isUsingVxPlugin;
        return object;
    }
    if (difference.change != Change::kAdded) object["before"] = boardJson(difference.before);
    if (difference.change != Change::kRemoved) object["after"] = boardJson(difference.after);
    return object;
}

}  // namespace oam::shadow
