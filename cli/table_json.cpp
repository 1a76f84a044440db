// The printer for programs.
#include "table.h"

namespace oam {
namespace {

std::string dumped(const Json& value, int indent) {
    return value.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

Json AsJson(const Table& table) {
    Json rows = Json::array();
    for (const auto& row : table.rows) {
        Json object = Json::object();
        for (size_t i = 0; i < row.size(); ++i) object[table.columns[i].key] = row[i].value;
        rows.push_back(std::move(object));
    }
    return rows;
}

Json AsJson(const Record& record) {
    Json object = Json::object();
    for (const Record::Line& line : record.lines) object[line.key] = line.cell.value;
    return object;
}

std::string JsonLine(const Json& value) { return dumped(value, -1); }

std::string JsonText(const Json& value) { return dumped(value, 2); }

}  // namespace oam
