#include "table_fit.h"

#include <algorithm>
#include <numeric>

#include "foreign_text.h"

namespace oam {
namespace {

constexpr size_t kLeast = 8;
constexpr size_t kBetween = 2;

size_t widthOf(const std::string& text) { return ShownWidth(Shown(text)); }

std::string shortened(const std::string& text, size_t width) {
    if (widthOf(text) <= width) return text;
    std::string head;
    for (size_t at = 0; at < text.size();) {
        size_t next = at + 1;
        while (next < text.size() && (static_cast<unsigned char>(text[next]) & 0xc0) == 0x80)
            ++next;
        if (widthOf(text.substr(0, next)) + 1 > width) break;
        head = text.substr(0, next);
        at = next;
    }
    return head + "\u2026";
}

}  // namespace

Table Fitted(const Table& table, size_t width) {
    const size_t count = table.columns.size();
    if (width == 0 || count == 0) return table;
    std::vector<size_t> widths(count), least(count);
    for (size_t i = 0; i < count; ++i) {
        widths[i] = widthOf(table.columns[i].title);
        least[i] = std::max(kLeast, widths[i]);
        for (const auto& row : table.rows) widths[i] = std::max(widths[i], widthOf(row[i].text));
        if (table.columns[i].right) least[i] = widths[i];
    }
    const size_t room = width > kBetween * (count - 1) ? width - kBetween * (count - 1) : 0;
    while (std::accumulate(widths.begin(), widths.end(), size_t{0}) > room) {
        // The one that has most to give; each gives as late as it can.
        size_t widest = count;
        for (size_t i = 0; i < count; ++i)
            if (widths[i] > least[i] && (widest == count || widths[i] > widths[widest])) widest = i;
        if (widest == count) break;
        --widths[widest];
    }
    Table fitted = table;
    for (auto& row : fitted.rows)
        for (size_t i = 0; i < count; ++i) row[i].text = shortened(row[i].text, widths[i]);
    return fitted;
}

}  // namespace oam
