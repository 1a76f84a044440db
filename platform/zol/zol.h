// The system layer: installation directory, symbols, waiting, and text comparison.
//
// Every function is safe on any thread and keeps no state.
#pragma once

#define ZOL_API __attribute__((visibility("default")))

extern "C" {

// Writes the installation directory: the environment variable KOR_DIR, read at every call, when it
// is set and absolute, else the compiled-in default. Trailing slashes are dropped (the root
// directory is the empty text, so that a relative path "/oam/..." can be appended). The flag
// changes nothing. 0, or non-zero with the buffer untouched when the text and its NUL do not fit in
// `size`.
ZOL_API int zolGetKorDir(bool flag, char* buffer, unsigned size) noexcept;

// Stores the address of a symbol of a loaded library. 0, or ZOL_NO_SYMBOL with *address untouched.
ZOL_API unsigned zolGetFunctionAddr(void* library, const char* name, void** address) noexcept;

// Wait for the whole time, also when signals interrupt.
ZOL_API void zolSleep(unsigned seconds) noexcept;
ZOL_API void zolSleepMs(unsigned milliseconds) noexcept;

// How zolStricmp takes a character: A to Z as a to z. Not tolower: in some locales it takes other
// bytes for letters, and an I for another letter.
inline int zolFold(char letter) noexcept {
    const auto byte = static_cast<unsigned char>(letter);
    return byte >= 'A' && byte <= 'Z' ? byte - 'A' + 'a' : byte;
}

// As strcmp and strncmp with the letters A to Z taken as a to z, whatever the locale; bytes above
// 127 compare by their unsigned value. A null text is the empty text.
ZOL_API int zolStricmp(const char* left, const char* right) noexcept;
ZOL_API int zolStrnicmp(const char* left, const char* right, unsigned long count) noexcept;
}

constexpr unsigned ZOL_NO_SYMBOL = 0xf0028;
