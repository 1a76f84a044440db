#include "pci_codes.h"

#include <gtest/gtest.h>

namespace oam::pci {
namespace {

TEST(PciCodes, AreNamedAsTheyAreSpelled) {
    EXPECT_STREQ(codeName(PCI_NOT_IN_SLOT), "PCI_NOT_IN_SLOT");
    EXPECT_STREQ(codeName(PCI_NO_LINK), "PCI_NO_LINK");
}

TEST(PciCodes, NameNoOthersCode) {
    for (const unsigned int code : {0u, 0x50020000u, 0x50020100u, unsigned{OAMERR_NOT_FOUND}}) {
        EXPECT_EQ(codeName(code), nullptr) << code;
    }
}

}  // namespace
}  // namespace oam::pci
