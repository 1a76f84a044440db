// The fixture: the service with pci.bpi on a made-up kernel tree with one network card.
//
// The plug-in's data file names that tree before the first start, so nothing here ever touches the
// machine's own devices.
#pragma once

#include <filesystem>
#include <string>

#include "fake_kernel.h"
#include "pci_codes.h"
#include "pci_host.h"
#include "support/service_test.h"

namespace oam::test {

constexpr const char* kPci = "pci.bpi";
constexpr const char* kCard = "0000:03:00.0";
constexpr const char* kBoard = "PCI 03:00";
constexpr const char* kDriver = "e1000e";

class PciTest : public ServiceTest {
  protected:
    void SetUp() override {
        std::filesystem::copy_file(PCI_PLUGIN_FILE, home.Path("lib/pci.bpi"));
        WriteSettings({});
        host.Add({.address = kCard});
    }

    // The plug-in's own object as an earlier run has left it, with these keywords besides.
    void WriteSettings(const Entries& more) const {
        auto entries = StandardEntries(kPci);
        entries.emplace_back("Sysfs.Root", host.Root());
        entries.emplace_back("Driver.Control", "Yes");
        entries.insert(entries.end(), more.begin(), more.end());
        home.WriteDataFile("pci.xmo", DataFile(kPci, entries));
    }

    // Starts the service and configures every board that is detected.
    void StartWithBoards() {
        Start();
        ASSERT_EQ(_oamDetectBoards(), OAM_SUCCESS);
        ASSERT_EQ(_oamAddDetectedBoard(nullptr), OAM_SUCCESS);
        alerts.Clear();
    }

    const PciHost host{home.Path("sys")};
    FakeKernel kernel{host};
};

}  // namespace oam::test
