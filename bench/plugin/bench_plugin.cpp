// bench.bpi, a board plug-in that adds as little as a plug-in can: its boards' keywords are stored
// as they are. What a benchmark wants to know of a start it is told at the address that a buffer
// sent to any of its boards holds (Gauge).

#include <cstring>

#include "gauge.h"
#include "oam/plugin.h"

namespace {

std::atomic<oam::bench::Gauge*> gauge{nullptr};

const char* computed(const char* keyword) {
    if (strcmp(keyword, "Products.Count") == 0) return "1";
    if (strcmp(keyword, "Products[0]") == 0) return oam::bench::kProduct;
    return nullptr;
}

unsigned answer(const char* text, char* buffer, unsigned size) {
    if (buffer == nullptr) return OAM_SUCCESS;
    if (strlen(text) >= size) return OAMERR_NOT_ENOUGH_MEMORY;
    strcpy(buffer, text);
    return OAM_SUCCESS;
}

}  // namespace

unsigned int Init(const char*) { return OAM_SUCCESS; }
unsigned int Exit() { return OAM_SUCCESS; }
const char* GetText(unsigned int) { return nullptr; }
unsigned int AlertReceive(const oam_msg_tag*) { return OAM_SUCCESS; }
unsigned int OpenObject(unsigned long, unsigned int) { return OAM_SUCCESS; }
unsigned int CloseObject(unsigned long) { return OAM_SUCCESS; }

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    return _oamDbSetKeyword(handle, keyword, value);
}

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    const char* text = computed(keyword);
    return text != nullptr ? answer(text, buffer, size)
                           : unsigned{_oamDbGetKeyword(handle, keyword, buffer, size)};
}

unsigned int GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                          char* buffer, unsigned int size) {
    return _oamDbGetQualifier(handle, keyword, qualifier, buffer, size);
}

unsigned int DetectBoards() { return OAM_SUCCESS; }
unsigned int CreateBoard(const char*, const char*) { return OAM_SUCCESS; }
unsigned int DestroyBoard(const char*) { return OAM_SUCCESS; }

unsigned int StartBoard(const char*) {
    if (oam::bench::Gauge* told = gauge) {
        told->entered = std::chrono::steady_clock::now();
        told->entries.fetch_add(1, std::memory_order_release);
    }
    return OAM_SUCCESS;
}

unsigned int StopBoard(const char*) { return OAM_SUCCESS; }
unsigned int TestBoard(const char*, unsigned int) { return OAM_SUCCESS; }

unsigned int SendBuffer(const char*, const void* buffer, unsigned int size) {
    oam::bench::Gauge* place = nullptr;
    if (size != sizeof place) return OAMERR_NOT_SUPPORTED_WARNING;
    memcpy(&place, buffer, sizeof place);
    gauge = place;
    return OAM_SUCCESS;
}

unsigned int GetBoardStatus(const char*, unsigned int, int* status) {
    if (status != nullptr) *status = 0;
    return OAM_SUCCESS;
}
