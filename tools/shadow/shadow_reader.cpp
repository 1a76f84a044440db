#include "shadow_reader.h"

#include <algorithm>
#include <array>
#include <optional>

#include "failure.h"
#include "oam/shadow.h"
#include "object_kind.h"
#include "steady_reading.h"

namespace oam::shadow {
namespace {

constexpr unsigned kUnused = 0;  // the readers' first argument

// More than any text of the segment needs.
using Text = std::array<char, 256>;

[[noreturn]] void refuse(oam_result code) { throw Failure(code, "the shadow cannot be read"); }

// False when the board that an earlier call has named is not there any more.
bool isStillThere(oam_result code) {
    if (code && code != OAMERR_NOT_FOUND) refuse(code);
    return !code;
}

std::optional<Board> readBoard(const char* name) {
    Board board;
    board.name = name;
    Text driver{};
    Text boardId{};
    const bool isThere =
        isStillThere(oamShadowBoardGetNumber(kUnused, name, &board.number)) &&
        isStillThere(oamShadowBoardGetDriverIDs(kUnused, name, driver.data(), driver.size(),
                                                boardId.data(), boardId.size())) &&
        isStillThere(oamShadowBoardIsUsingALaw(kUnused, name, &board.isALaw));
    if (!isThere) return {};
    board.driverName = driver.data();
    board.driverBoardId = boardId.data();
    return board;
}

std::optional<Table> readTable() {
    Table table;
    Text name{};
    int index = 0;
    while (isStillThere(oamShadowBoardEnum(kUnused, index++, name.data(), name.size()))) {
        auto board = readBoard(name.data());
        if (!board) return {};
        table.boards.push_back(std::move(*board));
    }
    if (auto failed = oamShadowBoardGetIsUsingVxPlugin(kUnused, &table.isUsingVxPlugin)) {
        refuse(failed);
    }
    return table;
}

template <class Value>
Value steady(std::optional<Value> value) {
    if (!value) throw Failure("the table changes faster than it can be read");
    return std::move(*value);
}

// `look(buffer, size)` finds the name of the board that is wanted; `wanted` tells which that is.
template <class Look>
Board findBoard(const std::string& wanted, Look look) {
    return steady(readSteady([&] {
        Text name{};
        const oam_result code = look(name.data(), static_cast<unsigned>(name.size()));
        if (code == OAMERR_NOT_FOUND) throw Failure(code, "no board " + wanted);
        if (code) refuse(code);
        return readBoard(name.data());
    }));
}

}  // namespace

ShadowReader::ShadowReader() {
    if (auto failed = oamShadowInit()) refuse(failed);
}

ShadowReader::~ShadowReader() { (void)oamShadowExit(); }

Table ShadowReader::ReadTable() const { return steady(readSteady(readTable)); }

Board ShadowReader::FindByNumber(unsigned number) const {
    return findBoard("has number " + std::to_string(number), [=](char* name, unsigned size) {
        return oamShadowBoardLookupByNumber(kUnused, number, name, size);
    });
}

Board ShadowReader::FindByDriverIds(const std::string& driverName,
                                    const std::string& boardId) const {
    return findBoard("of driver " + Quoted(driverName) + " has identifier " + Quoted(boardId),
                     [&](char* name, unsigned size) {
                         return oamShadowBoardLookupByDriverIDs(kUnused, driverName.c_str(),
                                                                boardId.c_str(), name, size);
                     });
}

// The readers take a name in any case but do not tell how the table spells it; the table does.
Board ShadowReader::FindByName(const std::string& name) const {
    const Table table = ReadTable();
    const auto found = std::ranges::find_if(
        table.boards, [&](const Board& board) { return SameName(board.name, name); });
    if (found == table.boards.end())
        throw Failure(OAMERR_NOT_FOUND, "no board has name " + Quoted(name));
    return *found;
}

}  // namespace oam::shadow
