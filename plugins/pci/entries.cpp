// The seventeen entries of the plug-in: nothing but the way in.
//
// GetBoardStatus answers by selector: 0 the driver (0 holds nothing, 1 some, 2 all of the board),
// 1 the link (0 no interface, 1 off, 2 down, 3 up), 2 the number of network interfaces.
#include "oam/plugin.h"

#include <string>

#include "kit/life.h"
#include "pci_codes.h"
#include "pci_plugin.h"

namespace {

using oam::pci::PciPlugin;
using Life = oam::kit::Life<PciPlugin>;

template <class Body>
unsigned int withPlugin(const Body& body) noexcept {
    return Life::Place().With(body);
}

}  // namespace

unsigned int Init(const char* fileName) { return Life::Place().Begin(std::string(fileName)); }

unsigned int Exit() { return Life::Place().End(); }

const char* GetText(unsigned int code) { return oam::pci::codeName(code); }

// Nothing that others report changes the hardware.
unsigned int AlertReceive(const oam_msg_tag*) { return OAM_SUCCESS; }

unsigned int DetectBoards() {
    return withPlugin([](PciPlugin& plugin) { return plugin.DetectBoards(); });
}

unsigned int CreateBoard(const char* boardName, const char*) {
    return withPlugin([&](PciPlugin& plugin) { return plugin.CreateBoard(boardName); });
}

// The hardware stays as it is: the host may use it without being configured as a board.
unsigned int DestroyBoard(const char*) { return OAM_SUCCESS; }

unsigned int OpenObject(unsigned long handle, unsigned int mode) {
    return withPlugin([&](PciPlugin& plugin) { return plugin.OpenObject(handle, mode); });
}

unsigned int CloseObject(unsigned long handle) {
    return withPlugin([&](PciPlugin& plugin) { return plugin.CloseObject(handle); });
}

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    if (keyword == nullptr || value == nullptr) return OAMERR_SET_BOARD_KEYWORD_FAIL;
    return withPlugin([&](PciPlugin& plugin) { return plugin.SetKeyword(handle, keyword, value); });
}

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    if (keyword == nullptr) return OAMERR_NOT_FOUND;
    return withPlugin(
        [&](PciPlugin& plugin) { return plugin.GetKeyword(handle, keyword, buffer, size); });
}

unsigned int GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                          char* buffer, unsigned int size) {
    if (keyword == nullptr || qualifier == nullptr) return OAMERR_NOT_FOUND;
    return withPlugin([&](PciPlugin& plugin) {
        return plugin.GetQualifier(handle, keyword, qualifier, buffer, size);
    });
}

unsigned int StartBoard(const char* boardName) {
    return withPlugin([&](PciPlugin& plugin) { return plugin.StartBoard(boardName); });
}

unsigned int StopBoard(const char* boardName) {
    return withPlugin([&](PciPlugin& plugin) { return plugin.StopBoard(boardName); });
}

unsigned int TestBoard(const char* boardName, unsigned int testValue) {
    return withPlugin([&](PciPlugin& plugin) { return plugin.TestBoard(boardName, testValue); });
}

unsigned int SendBuffer(const char* boardName, const void*, unsigned int) {
    return withPlugin([&](PciPlugin& plugin) { return plugin.SendBuffer(boardName); });
}

unsigned int GetBoardStatus(const char* boardName, unsigned int selector, int* status) {
    return withPlugin(
        [&](PciPlugin& plugin) { return plugin.GetBoardStatus(boardName, selector, status); });
}
