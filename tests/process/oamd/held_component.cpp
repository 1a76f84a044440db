// A component whose keyword "Word" is answered only while there is no file "hold" in the
// installation: its caller holds the database meanwhile.
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "oam/component.h"

unsigned int Init(const char*) { return 0; }
unsigned int Exit() { return 0; }
const char* GetText(unsigned int) { return nullptr; }
unsigned int AlertReceive(const oam_msg_tag*) { return 0; }
unsigned int OpenObject(unsigned long, unsigned int) { return 0; }
unsigned int CloseObject(unsigned long) { return 0; }
unsigned int SetKeyword(unsigned long, const char*, const char*) { return OAMERR_ACCESS_DENIED; }

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    if (!keyword || std::strcmp(keyword, "Word") != 0)
        return _oamDbGetKeyword(handle, keyword, buffer, size);
    const std::string installation = std::getenv("KOR_DIR");
    const std::string holding = installation + "/holding";
    const std::string hold = installation + "/hold";
    if (access(hold.c_str(), F_OK) == 0) {
        if (FILE* mark = std::fopen(holding.c_str(), "w")) std::fclose(mark);
        while (access(hold.c_str(), F_OK) == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    if (!buffer) return 0;
    if (size < 5) return OAMERR_NOT_ENOUGH_MEMORY;
    std::memcpy(buffer, "kept", 5);
    return 0;
}

unsigned int GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                          char* buffer, unsigned int size) {
    return _oamDbGetQualifier(handle, keyword, qualifier, buffer, size);
}
