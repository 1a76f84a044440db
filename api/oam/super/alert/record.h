// Building and copying alert records (oam/message.h has the layout).
#pragma once

#include <cstdarg>
#include <cstdlib>
#include <memory>

#include "oam/message.h"

struct FreeRecord {
    void operator()(oam_msg_tag* record) const noexcept { free(record); }
};
using AlertRecord = std::unique_ptr<oam_msg_tag, FreeRecord>;

// Room for nearly every record, so that raising an alert takes no memory.
struct RecordRoom {
    alignas(oam_msg_tag) char bytes[512];
};

// A record in the room, or, when it does not fit, in memory of its own that `large` gets. Null when
// there is no memory. Every byte after the last text is zero.
oam_msg_tag* makeRecord(RecordRoom* room, AlertRecord* large, unsigned code, unsigned severity,
                        const char* source, const char* format, va_list arguments) noexcept
    __attribute__((format(printf, 6, 0)));

// A copy that stays good after the call in which the record was received.
AlertRecord copyRecord(const oam_msg_tag& record) noexcept;
