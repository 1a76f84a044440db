#include "pci_codes.h"

namespace oam::pci {

const char* codeName(unsigned int code) {
    switch (code) {
#define PCI_CODE(name, value) \
    case name:                \
        return #name;
#include "pci_codes.def"
#undef PCI_CODE
        default:
            return nullptr;
    }
}

}  // namespace oam::pci
