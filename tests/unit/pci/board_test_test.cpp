#include "board_test.h"

#include "host_test.h"
#include "pci_codes.h"

namespace oam::pci {
namespace {

class BoardTestOfConfiguration : public HostTest {
  protected:
    void SetUp() override { host.Add({.address = kCard}); }
    oam_result With(std::string_view bytes) const {
        host.Write(host.Device(kCard) / "config", bytes);
        return testConfiguration(tree, at(kCard));
    }
};

TEST_F(BoardTestOfConfiguration, PassesWhatTheKernelFound) {
    EXPECT_EQ(testConfiguration(tree, at(kCard)), OAM_SUCCESS);
}

TEST_F(BoardTestOfConfiguration, FailsWhenNobodyAnswers) {
    EXPECT_EQ(With(std::string(64, '\xff')), PCI_NO_ANSWER);
    EXPECT_EQ(With(""), PCI_NO_ANSWER);
    EXPECT_EQ(With("abc"), PCI_NO_ANSWER);
    std::filesystem::remove(host.Device(kCard) / "config");
    EXPECT_EQ(testConfiguration(tree, at(kCard)), PCI_NO_ANSWER);
    EXPECT_EQ(testConfiguration(tree, at("0000:09:00.0")), PCI_NO_ANSWER);
}

TEST_F(BoardTestOfConfiguration, FailsWhenAnotherDeviceAnswers) {
    EXPECT_EQ(With(test::configuration(0x8086, 0x10d4)), PCI_OTHER_DEVICE);
    EXPECT_EQ(With(test::configuration(0x8087, 0x10d3)), PCI_OTHER_DEVICE);
    EXPECT_EQ(With(std::string(64, '\0')), PCI_OTHER_DEVICE);
    host.Add({.address = kCard});
    std::filesystem::remove(host.Device(kCard) / "vendor");
    EXPECT_EQ(testConfiguration(tree, at(kCard)), PCI_OTHER_DEVICE);
}

class BoardTestOfLinks : public HostTest {
  protected:
    void SetUp() override { host.Add({.address = kCard}); }
    void Add(const char* name, const char* carrier, const char* state) const {
        host.AddInterface(kCard, name, "02:00:00:00:00:01", carrier, state);
    }
};

TEST_F(BoardTestOfLinks, PassesADeviceWithoutInterfaces) {
    EXPECT_EQ(testLink(tree, at(kCard)), OAM_SUCCESS);
}

TEST_F(BoardTestOfLinks, PassesInterfacesThatAreUpOrSwitchedOff) {
    Add("eth0", "1", "up");
    Add("eth1", "", "down");
    EXPECT_EQ(testLink(tree, at(kCard)), OAM_SUCCESS);
}

TEST_F(BoardTestOfLinks, FailsWhenOneInterfaceHasNoLink) {
    Add("eth0", "1", "up");
    Add("eth1", "0", "down");
    EXPECT_EQ(testLink(tree, at(kCard)), PCI_NO_LINK);
}

}  // namespace
}  // namespace oam::pci
