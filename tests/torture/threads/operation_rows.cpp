// Operations on boards, and what is passed on to their plug-ins.
#include "caller.h"
#include "oam/entry.h"
#include "sim_codes.h"
#include "words.h"

namespace oam::torture {

namespace {

using Operation = oam_result(const char*, unsigned) noexcept;

// Between the end and the start of the plug-ins, in an import, no request is taken.
void request(Caller& caller, const char* function, Operation* operation) {
    const std::string board = caller.Board();
    const bool isAll = caller.Chance().OneIn(10);
    const unsigned flags = caller.Chance().Below(4);
    caller.Call(function, {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_SERVER_NOT_RUNNING},
                [&] { return unsigned{operation(isAll ? nullptr : board.c_str(), flags)}; });
}

// What sim.bpi answers for a board that it has no longer, that is dead or pulled out of its slot,
// or in whose slot another product is; and a plug-in that an import has ended.
constexpr Codes kPluginCodes = {OAM_SUCCESS,
                                OAMERR_NOT_FOUND,
                                OAMERR_SERVER_NOT_RUNNING,
                                OAMERR_NOT_SUPPORTED_WARNING,
                                OAMERR_SEND_BUFFER_FAIL,
                                oam::sim::SIM_BOARD_NOT_IN_SLOT,
                                oam::sim::SIM_WRONG_PRODUCT};

void send(Caller& caller) {
    static constexpr const char* kCommands[] = {
        "temperature 850", "temperature 300", "fan 900", "fan 3000", "fail start 1", "dead",
        "remove",          "insert",          "insert",  "insert",   "sing",         ""};
    const std::string board = caller.Board();
    const std::string command = caller.Chance().OneOf(kCommands);
    caller.Call("_oamSendBuffer", kPluginCodes, [&] {
        return unsigned{
            _oamSendBuffer(board.c_str(), command.data(), static_cast<unsigned>(command.size()))};
    });
}

void status(Caller& caller) {
    const std::string board = caller.Board();
    int answered = 0;
    caller.Call("_oamBoardGetStatus", kPluginCodes, [&] {
        return unsigned{_oamBoardGetStatus(board.c_str(), caller.Chance().Below(5), &answered)};
    });
}

// A plug-in's object that somebody has open to write, or that an import has removed for a moment.
void detect(Caller& caller) {
    caller.Call("_oamDetectBoards", {OAM_SUCCESS, OAMERR_ACCESS_DENIED, OAMERR_NOT_FOUND},
                [&] { return unsigned{_oamDetectBoards()}; });
}

}  // namespace

std::vector<Row> OperationRows() {
    return {
        {"_oamStartBoard", 8,
         [](Caller& caller) { request(caller, "_oamStartBoard", &_oamStartBoard); }},
        {"_oamStopBoard", 6,
         [](Caller& caller) { request(caller, "_oamStopBoard", &_oamStopBoard); }},
        {"_oamTestBoard", 6,
         [](Caller& caller) { request(caller, "_oamTestBoard", &_oamTestBoard); }},
        {"_oamSendBuffer", 6, &send},
        {"_oamBoardGetStatus", 6, &status},
        {"_oamDetectBoards", 3, &detect},
    };
}

}  // namespace oam::torture
