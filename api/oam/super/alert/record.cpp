#include "record.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr int kTextSize = 256;
constexpr size_t kHeaderSize = 24;
static_assert(sizeof(oam_msg_tag) == kHeaderSize);

AlertRecord allocate(size_t size) noexcept {
    return AlertRecord(static_cast<oam_msg_tag*>(calloc(1, size)));
}

}  // namespace

oam_msg_tag* makeRecord(RecordRoom* room, AlertRecord* large, unsigned code, unsigned severity,
                        const char* source, const char* format, va_list arguments) noexcept {
    char text[kTextSize];
    int length = vsnprintf(text, sizeof text, format, arguments);
    // Kept: only a failure or a text of exactly the buffer's size is corrected. A longer text is
    // cut by the buffer, but counts whole in the record's size.
    if (length < 0 || length == kTextSize) {
        length = kTextSize - 1;
        text[length] = '\0';
    }

    const size_t sourceLength = strlen(source);
    const size_t size = sourceLength + static_cast<size_t>(length) + kHeaderSize + 2;
    oam_msg_tag* record;
    if (size <= sizeof room->bytes) {
        memset(room->bytes, 0, size);
        record = reinterpret_cast<oam_msg_tag*>(room->bytes);
    } else {
        *large = allocate(size);
        record = large->get();
    }
    if (record == nullptr) return nullptr;
    record->size = static_cast<uint32_t>(size);
    record->code = code;
    record->severity = severity;
    record->sourceOffset = kHeaderSize;
    record->textOffset = static_cast<uint32_t>(kHeaderSize + sourceLength + 1);
    char* bytes = reinterpret_cast<char*>(record);
    memcpy(bytes + record->sourceOffset, source, sourceLength + 1);
    memcpy(bytes + record->textOffset, text, strlen(text) + 1);
    return record;
}

AlertRecord copyRecord(const oam_msg_tag& record) noexcept {
    const size_t sourceEnd = record.sourceOffset + strlen(oamMessageSource(&record)) + 1;
    const size_t textEnd = record.textOffset + strlen(oamMessageText(&record)) + 1;
    const size_t used = std::max({kHeaderSize, sourceEnd, textEnd});
    // `size` may count characters that are not there; the copy has room for them all the same.
    AlertRecord copy = allocate(std::max<size_t>(used, record.size));
    if (copy != nullptr) memcpy(copy.get(), &record, used);
    return copy;
}
