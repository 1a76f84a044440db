// The printer for people.
#include <algorithm>

#include "foreign_text.h"
#include "table.h"

namespace oam {
namespace {

using Texts = std::vector<std::string>;

void pad(std::string* line, size_t count) { line->append(count, ' '); }

std::string aligned(const Texts& row, const std::vector<size_t>& widths,
                    const std::vector<Column>& columns) {
    std::string line;
    for (size_t i = 0; i < row.size(); ++i) {
        if (i > 0) pad(&line, 2);
        const size_t missing = widths[i] - ShownWidth(row[i]);
        if (columns[i].right) pad(&line, missing);
        line += row[i];
        if (!columns[i].right) pad(&line, missing);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line + '\n';
}

}  // namespace

std::string Cell::TextOf(const Json& value) {
    if (value.is_null()) return "-";
    if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
    return value.is_string() ? value.get<std::string>() : JsonLine(value);
}

std::string AsText(const Table& table) {
    std::vector<Texts> lines(1);
    for (const Column& column : table.columns) lines[0].push_back(column.title);
    for (const auto& row : table.rows) {
        Texts& texts = lines.emplace_back();
        for (const Cell& cell : row) texts.push_back(Shown(cell.text));
        for (size_t i = 0; i + 1 < texts.size(); ++i)
            if (texts[i].empty()) texts[i].assign(1, '-');
    }
    std::vector<size_t> widths(table.columns.size());
    for (const Texts& line : lines)
        for (size_t i = 0; i < line.size(); ++i)
            widths[i] = std::max(widths[i], ShownWidth(line[i]));
    std::string text;
    for (const Texts& line : lines) text += aligned(line, widths, table.columns);
    return text;
}

std::string AsText(const Record& record) {
    size_t width = 0;
    for (const Record::Line& line : record.lines)
        width = std::max(width, ShownWidth(Shown(line.label)));
    std::string text;
    for (const Record::Line& line : record.lines) {
        std::string shown = Shown(line.label);
        pad(&shown, width + 2 - ShownWidth(shown));
        shown += Shown(line.cell.text);
        shown.erase(shown.find_last_not_of(' ') + 1);
        text += shown + '\n';
    }
    return text;
}

}  // namespace oam
