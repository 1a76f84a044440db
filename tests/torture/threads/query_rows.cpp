// The board queries: what is asked by a name, and names that are looked up.
#include "caller.h"
#include "oam/entry.h"
#include "words.h"

namespace oam::torture {

namespace {

constexpr Codes kNumberCodes = {OAM_SUCCESS, OAMERR_NOT_FOUND};
constexpr Codes kTextCodes = {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_NOT_ENOUGH_MEMORY};

// Where answers go; nobody looks at them but a sanitizer.
struct Answer {
    char text[128];
    char more[128];
    unsigned first;
    unsigned second;
};

// A query that answers texts: ask(random, size, answer).
template <class Ask>
void text(Caller& caller, const char* function, Ask ask) {
    Answer answer;
    const unsigned size = AnySize(caller.Chance());
    caller.Call(function, kTextCodes, [&] { return unsigned{ask(caller.Chance(), size, answer)}; });
}

// A query about a board that answers numbers, or a change of it: ask(board, random, answer).
template <class Ask>
void number(Caller& caller, const char* function, Ask ask) {
    Answer answer;
    const std::string board = caller.Board();
    caller.Call(function, kNumberCodes,
                [&] { return unsigned{ask(board.c_str(), caller.Chance(), answer)}; });
}

std::string anyMacAddress(Random& random) {
    return "02:00:53:00:00:1" + std::to_string(random.Below(10));
}

oam_result setMacAddress(const char* board, Random& random, Answer&) {
    char texts[OAM_MAC_KEPT + 1][OAM_MAC_TEXT_SIZE] = {};
    const unsigned count = random.Below(OAM_MAC_KEPT + 2);
    for (unsigned i = 0; i < count; ++i) anyMacAddress(random).copy(texts[i], 17);
    return _oamBoardSetMACAddress(board, texts, count);
}

// Makes a row of a function whose arguments are written out.
#define TEXT_ROW(function, ...)                                                           \
    {                                                                                     \
#function, 2, [](Caller& caller) {                                                      \
         text(caller, #function,                                                             \
              [](Random& random, unsigned size, Answer& answer) { return function(__VA_ARGS__); }); \
     } \
    }
#define NUMBER_ROW(function, ...)                                                    \
    {                                                                                \
#function, 2, [](Caller& caller) {                                                 \
         number(caller, #function, [](const char* board, Random& random, Answer& answer) { \
             (void)random, (void)answer;                                                \
             return function(__VA_ARGS__);                                              \
         });                                                                            \
     } \
    }
#define BOARD AnyBoard(random).c_str()

}  // namespace

std::vector<Row> QueryRows() {
    return {
        TEXT_ROW(_oamBoardEnum, static_cast<int>(random.Below(12)) - 1, answer.text, size),
        TEXT_ROW(_oamBoardLookupByNumber, random.Below(20), answer.text, size),
        TEXT_ROW(_oamBoardLookupByDriverIDs, "sim", random.OneIn(2) ? "" : "text 1", answer.text,
                 size),
        TEXT_ROW(_oamBoardLookupByBusSlot, random.Below(2), random.Below(9), answer.text, size),
        TEXT_ROW(_oamBoardLookupByShelfSlot, 32, random.Below(2) * 32, answer.text, size),
        TEXT_ROW(_oamBoardLookupByIOAddress, random.Below(2), answer.text, size),
        TEXT_ROW(_oamBoardLookupBySerialNumber, random.OneIn(2) ? "S1" : "s3", answer.text, size),
        TEXT_ROW(_oamBoardLookupByProduct, AnyProduct(random).c_str(), answer.text, size),
        TEXT_ROW(_oamBoardLookupByMACAddress, anyMacAddress(random).c_str(), answer.text, size),
        TEXT_ROW(_oamBoardGetDriverIDs, BOARD, answer.text, size, answer.more, size),
        TEXT_ROW(_oamBoardGetMACAddress, BOARD, answer.text, size, random.Below(5)),
        TEXT_ROW(_oamBoardGetSerialNumber, BOARD, answer.text, size),
        TEXT_ROW(_oamBoardGetProduct, BOARD, answer.text, size),
        NUMBER_ROW(_oamBoardGetNumber, board, &answer.first),
        NUMBER_ROW(_oamBoardGetBusSlot, board, &answer.first, &answer.second),
        NUMBER_ROW(_oamBoardGetShelfSlot, board, &answer.first, &answer.second),
        NUMBER_ROW(_oamBoardSetShelfSlot, board, random.Below(3), random.Below(20)),
        NUMBER_ROW(_oamBoardResetMACAddressCount, board),
        {"_oamBoardSetMACAddress", 2,
         [](Caller& caller) { number(caller, "_oamBoardSetMACAddress", &setMacAddress); }},
        NUMBER_ROW(_oamBoardGetIOAddress, board, &answer.first),
        NUMBER_ROW(_oamBoardGetAutoStartEnabled, board, &answer.first),
        NUMBER_ROW(_oamBoardGetAutoStopEnabled, board, &answer.first),
    };
}

}  // namespace oam::torture
