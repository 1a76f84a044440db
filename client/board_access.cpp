#include "board_access.h"

#include "failure.h"
#include "oam/entry.h"

namespace oam {

int BoardStatus(const std::string& board, unsigned selector) {
    int status = 0;
    const unsigned code = _oamBoardGetStatus(board.c_str(), selector, &status);
    if (code)
        throw Failure(code, "no status of " + Quoted(board),
                      code == OAMERR_NOT_SUPPORTED_WARNING
                          ? "the board's plug-in does not tell a status"
                          : "");
    return status;
}

void SendBuffer(const std::string& board, const std::string& bytes) {
    const unsigned code =
        _oamSendBuffer(board.c_str(), bytes.data(), static_cast<unsigned>(bytes.size()));
    if (code) throw Failure(code, "cannot send to " + Quoted(board));
}

}  // namespace oam
