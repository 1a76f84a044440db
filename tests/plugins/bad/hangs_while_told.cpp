// Hangs in SendBuffer, or when "Gain" is read, as long as there is a file "hang.<entry>" in the
// installation.
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "sound.h"

extern "C" {
OAM_ENTRY oam_plugin_send_buffer SendBuffer;
}

namespace {

void hangWhileTold(const char* entry) {
    const char* const directory = std::getenv("KOR_DIR");
    const std::string file = std::string(directory ? directory : "") + "/hang." + entry;
    constexpr unsigned kLook = 10000;
    while (access(file.c_str(), F_OK) == 0) usleep(kLook);
}

}  // namespace

unsigned int SendBuffer(const char*, const void*, unsigned int) {
    hangWhileTold("SendBuffer");
    return OAM_SUCCESS;
}

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    if (keyword != nullptr && std::strcmp(keyword, "Gain") == 0) hangWhileTold("GetKeyword");
    return SoundGetKeyword(handle, keyword, buffer, size);
}
