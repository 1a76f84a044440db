#include "korcore/stream.h"

#include <cstdint>
#include <cstring>

CKorStream::~CKorStream() = default;

CKorStream& CKorStream::operator<<(int value) noexcept {
    static_assert(sizeof value == 4);
    (void)Write(&value, sizeof value);
    return *this;
}

CKorStream& CKorStream::operator<<(bool value) noexcept {
    const unsigned char byte = value ? 1 : 0;
    (void)Write(&byte, sizeof byte);
    return *this;
}

CKorStream& CKorStream::operator>>(int& value) noexcept {
    if (!Read(&value, sizeof value)) value = 0;
    return *this;
}

CKorStream& CKorStream::operator>>(bool& value) noexcept {
    unsigned char byte = 0;
    value = Read(&byte, sizeof byte) && byte != 0;
    return *this;
}
