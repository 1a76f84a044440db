#include "pci_library.h"

#include "host_test.h"

namespace oam::pci {
namespace {

class PciLibraryUse : public HostTest {
  protected:
    void SetUp() override { host.Add({.address = kCard}); }

    std::optional<DeviceIdentity> Identity(const char* address = kCard) {
        return PciLibrary(host.Root()).Identity(at(address));
    }
    std::optional<DeviceIdentity> Answer() { return PciLibrary(host.Root()).Answer(at(kCard)); }
    std::optional<std::string> SerialNumber() {
        return PciLibrary(host.Root()).SerialNumber(at(kCard));
    }
};

TEST_F(PciLibraryUse, ReadsWhatTheKernelFound) {
    const auto identity = Identity();
    ASSERT_TRUE(identity);
    EXPECT_EQ(identity->vendor, 0x8086);
    EXPECT_EQ(identity->device, 0x10d3);
    EXPECT_EQ(identity->classCode, 0x020000u);
}

TEST_F(PciLibraryUse, ReadsTheProgrammingInterfaceToo) {
    host.Write(host.Device(kCard) / "class", "0x070302\n");
    EXPECT_EQ(Identity()->classCode, 0x070302u);
}

TEST_F(PciLibraryUse, ReadsWhatTheDeviceAnswersNow) {
    host.Write(host.Device(kCard) / "config", test::configuration(0x1234, 0xabcd));
    ASSERT_TRUE(Answer());
    EXPECT_EQ(Answer()->vendor, 0x1234);
    EXPECT_EQ(Answer()->device, 0xabcd);
}

TEST_F(PciLibraryUse, GoesOnAfterADeviceThatCannotBeRead) {
    host.Add({.address = "0000:04:00.0"});
    std::filesystem::remove(host.Device(kCard) / "vendor");
    PciLibrary library(host.Root());
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(library.Identity(at(kCard)));
        EXPECT_TRUE(library.Identity(at("0000:04:00.0")));
    }
}

TEST_F(PciLibraryUse, KnowsNoDeviceThatIsNotThere) {
    EXPECT_FALSE(Identity("0000:05:00.0"));
    EXPECT_FALSE(PciLibrary(host.Root()).Answer(at("0000:05:00.0")));
    EXPECT_FALSE(PciLibrary(host.Root()).SerialNumber(at("0000:05:00.0")));
    EXPECT_FALSE(PciLibrary("/nonexistent").Identity(at(kCard)));
}

TEST_F(PciLibraryUse, SurvivesFilesOfAnotherKindThanExpected) {
    for (const std::string& bytes :
         {std::string(), std::string("not a number"), std::string(100000, 'x'),
          std::string("\0\x01\xff", 3), std::string("0xffffffffffffffffffff"), std::string("-1")}) {
        for (const char* file : {"vendor", "device", "class", "revision", "config"}) {
            host.Add({.address = kCard});
            host.Write(host.Device(kCard) / file, bytes);
            (void)Identity();
            (void)Answer();
            (void)SerialNumber();
        }
        host.Write(host.Device(kCard) / "vendor", bytes);
        if (const auto identity = Identity()) {
            EXPECT_NE(identity->vendor, 0x8086);
        }
    }
}

TEST_F(PciLibraryUse, ReadsTheSerialNumberWithItsHighestByteFirst) {
    host.SetSerialNumber(kCard, 0x0123456789abcdef);
    EXPECT_EQ(SerialNumber(), "01-23-45-67-89-ab-cd-ef");
}

TEST_F(PciLibraryUse, FindsNoSerialNumberWhereThereIsNone) {
    EXPECT_EQ(SerialNumber(), std::nullopt);
    for (const std::uint64_t nothing : {std::uint64_t{0}, ~std::uint64_t{0}}) {
        host.SetSerialNumber(kCard, nothing);
        EXPECT_EQ(SerialNumber(), std::nullopt);
    }
}

TEST_F(PciLibraryUse, FindsNoSerialNumberThatIsCutOff) {
    host.SetSerialNumber(kCard, 0x0123456789abcdef);
    const auto bytes = host.Read(host.Device(kCard) / "config");
    for (const std::size_t size : {0x10bu, 0x104u, 0x100u, 0x41u, 0x06u, 0u}) {
        host.Write(host.Device(kCard) / "config", bytes.substr(0, size));
        EXPECT_EQ(SerialNumber(), std::nullopt) << size;
    }
}

TEST_F(PciLibraryUse, EndsInACapabilityListWithoutAnEnd) {
    host.SetSerialNumber(kCard, 1);
    auto bytes = host.Read(host.Device(kCard) / "config");
    bytes[0x41] = 0x40;
    bytes[0x100] = 0x0b;
    bytes[0x103] = 0x10;
    host.Write(host.Device(kCard) / "config", bytes);
    EXPECT_EQ(SerialNumber(), std::nullopt);
}

}  // namespace
}  // namespace oam::pci
