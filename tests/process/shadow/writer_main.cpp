// A server of the board shadow, to be killed in the middle: it gives its board "Board" one pair of
// equal driver texts after another, each pair in one change, and says "running" once it does so.
// The installation (KOR_DIR) with the plug-in "rec.bpi" and the board is its parent's.
#include <iostream>
#include <string>

#include "oam/entry.h"
#include "plugins/recorder/host.h"

namespace {

bool change(const std::string& text) {
    unsigned long handle = 0;
    if (_oamOpenObject(OAM_INTERNAL_CLIENT, "Board", &handle, OAM_OPEN_WRITE) != OAM_SUCCESS) {
        return false;
    }
    const bool set = _oamSetKeyword(handle, "Driver.Name", text.c_str()) == OAM_SUCCESS &&
                     _oamSetKeyword(handle, "Driver.BoardId", text.c_str()) == OAM_SUCCESS;
    return _oamCloseObject_WOAN(handle) == OAM_SUCCESS && set;
}

}  // namespace

int main() {
    oam::test::Recorder recorder;
    recorder.Script("rec.bpi", [](oam::test::ModuleScript& script) { script.products = {"Card"}; });
    if (_oamInit() != OAM_SUCCESS || !change("0")) {
        std::cout << "failed" << std::endl;
        return 1;
    }
    std::cout << "running" << std::endl;
    for (unsigned long round = 1;; ++round) {
        if (!change(std::string(1 + round % 60, static_cast<char>('a' + round % 26)))) return 2;
    }
}
