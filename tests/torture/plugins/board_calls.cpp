// Operations on boards, and what is passed on to plug-ins.
#include "inside_call.h"

namespace oam::torture {

namespace {

const std::vector<unsigned> kRequest = {kNotRunning, kNotFound, kNoMemory,
                                        OAMERR_CANT_CREATE_THREAD};

template <oam_result (*Request)(const char*, unsigned) noexcept, bool kAll, unsigned kValue>
unsigned request(Inside&) {
    return Request(kAll ? nullptr : kBoard, kValue);
}

// On the entry's own thread.
template <oam_result (*Request)(const char*, unsigned) noexcept, bool kAll>
InsideCall here(const char* function, const char* what) {
    return {function, what, &request<Request, kAll, OAM_SYNCHRONIZED>, kRequest};
}

template <oam_result (*Request)(const char*, unsigned) noexcept, bool kAll>
InsideCall elsewhere(const char* function, const char* what) {
    return {function, what, &request<Request, kAll, 0>, kRequest, Echo::kLater};
}

}  // namespace

std::vector<InsideCall> BoardCalls() {
    return {
        here<_oamStartBoard, false>("_oamStartBoard", "its own, synchronized"),
        here<_oamStartBoard, true>("_oamStartBoard", "every one, synchronized"),
        elsewhere<_oamStartBoard, false>("_oamStartBoard", "its own"),
        elsewhere<_oamStartBoard, true>("_oamStartBoard", "every one"),
        here<_oamStopBoard, false>("_oamStopBoard", "its own, synchronized"),
        here<_oamStopBoard, true>("_oamStopBoard", "every one, synchronized"),
        elsewhere<_oamStopBoard, false>("_oamStopBoard", "its own"),
        elsewhere<_oamStopBoard, true>("_oamStopBoard", "every one"),
        elsewhere<_oamTestBoard, false>("_oamTestBoard", "its own"),
        elsewhere<_oamTestBoard, true>("_oamTestBoard", "every one"),
        {"_oamSendBuffer",
         "",
         [](Inside&) { return unsigned{_oamSendBuffer(kBoard, "more", 4)}; },
         {kNotRunning, kNotFound, kDenied}},
        {"_oamBoardGetStatus",
         "",
         [](Inside&) {
             int status = 0;
             return unsigned{_oamBoardGetStatus(kBoard, 2, &status)};
         },
         {kNotRunning, kNotFound, kDenied}},
        {"_oamDetectBoards",
         "",
         [](Inside&) { return unsigned{_oamDetectBoards()}; },
         {kNotRunning, kNotFound, kDenied, kNoMemory, kUnreadable}},
    };
}

}  // namespace oam::torture
