#include "shadow_writer.h"

#include "board_table.h"
#include "objects/shadow.h"

oam_result boardIDsShadowUpdate() noexcept {
    oam::TableGuard hold;
    ShadowImage image(isUsingVxPlugin());
    for (int i = 0; i < boardTable().Count(); ++i) {
        const CBoardID& board = *boardTable().At(i);
        image.Add(CBoardIDShadow(board.Name(), board.values.number,
                                 board.values.driverName.OrEmpty(),
                                 board.values.driverBoardId.OrEmpty(), board.values.xLaw));
    }
    return PublishShadow(image);
}
