#include "shadow_writer.h"

#include <algorithm>

#include "board_table.h"
#include "objects/shadow.h"

oam_result boardIDsShadowUpdate() noexcept {
    oam::TableGuard hold;
    ShadowImage image(isUsingVxPlugin());
    const int shown = std::min(boardTable().Count(), kMostShadowBoards);
    for (int i = 0; i < shown; ++i) {
        const CBoardID& board = *boardTable().At(i);
        image.Add(CBoardIDShadow(board.Name(), board.values.number,
                                 board.values.driverName.OrEmpty(),
                                 board.values.driverBoardId.OrEmpty(), board.values.xLaw));
    }
    return PublishShadow(image);
}
