// The plug-in's own result codes, in a range of their own.
//
//   PCI_NOT_IN_SLOT     nothing that the match table knows is at the board's location
//   PCI_WRONG_PRODUCT   the match table calls what is there another product
//   PCI_NO_SUCH_DRIVER  the kernel has no driver of that name
//   PCI_BIND_REFUSED    the kernel did not take the order to bind
//   PCI_NOT_BOUND       it took the order, but the driver does not hold the device
//   PCI_UNBIND_REFUSED, PCI_STILL_BOUND   the same for letting go
//   PCI_NO_ANSWER       the configuration space cannot be read, or reads as all ones
//   PCI_OTHER_DEVICE    it names another device than the one that the kernel found
//   PCI_NO_LINK         a network interface is switched on and has no link
#pragma once

#include "oam/codes.h"

namespace oam::pci {

#define PCI_CODE(name, value) inline constexpr oam_result name{value};
#include "pci_codes.def"
#undef PCI_CODE

// The name of one of the codes above, a static text; null for every other code.
const char* codeName(unsigned int code);

}  // namespace oam::pci
