#include "shadow_table.h"

#include "failure.h"
#include "oam/shadow.h"
#include "text_answer.h"

namespace oam {
namespace {

std::vector<ShadowBoard> readBoards() {
    std::vector<ShadowBoard> boards;
    const auto names = AskNames([](int index, char* buffer, unsigned size) {
        return oamShadowBoardEnum(0, index, buffer, size);
    });
    for (const std::string& name : names) {
        unsigned number = 0;
        bool isALaw = false;
        // The longest that a record holds.
        char driver[129] = "", id[65] = "";
        const char* board = name.c_str();
        if (oamShadowBoardGetNumber(0, board, &number) != OAM_SUCCESS) continue;
        (void)oamShadowBoardGetDriverIDs(0, board, driver, sizeof driver, id, sizeof id);
        (void)oamShadowBoardIsUsingALaw(0, board, &isALaw);
        boards.push_back({number, name, driver, id, isALaw});
    }
    return boards;
}

}  // namespace

Table ShadowTable::Boards() const {
    Table table{{{"number", "NUMBER", true},
                 {"name", "NAME"},
                 {"driverName", "DRIVER"},
                 {"driverBoardId", "BOARD ID"},
                 {"isALaw", "A-LAW"}},
                {}};
    for (const ShadowBoard& board : boards)
        table.rows.push_back(
            {board.number, board.name, board.driverName, board.driverBoardId, board.isALaw});
    return table;
}

ShadowTable ReadShadow() {
    const unsigned code = oamShadowInit();
    if (code) throw Failure(code, "the board shadow cannot be opened");
    ShadowTable shadow;
    shadow.boards = readBoards();
    const unsigned read = oamShadowBoardGetIsUsingVxPlugin(0, &shadow.isUsingVx);
    (void)oamShadowExit();
    if (read) throw Failure(read, "the board shadow cannot be read");
    return shadow;
}

}  // namespace oam
