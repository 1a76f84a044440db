// What the plug-in finds on the bus, and what becomes of it in a board's object.
#include <map>

#include "pci_test.h"

namespace oam::test {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> detectedNames() {
    std::vector<std::string> names;
    const unsigned long handle = Open("Supervisor");
    const int count = std::stoi(GetKeyword(handle, "DetectedBoards.Count").text);
    for (int i = 0; i < count; ++i) {
        const auto name = "DetectedBoards[" + std::to_string(i) + "].Name";
        names.push_back(GetKeyword(handle, name).text);
    }
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    return names;
}

class PciDetection : public PciTest {
  protected:
    std::vector<std::string> Detect() {
        EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
        return detectedNames();
    }
};

TEST_F(PciDetection, FindsBoardsByBusAndSlot) {
    host.Add({.address = "0000:03:01.0", .classCode = 0x040200});
    host.Add({.address = "0002:03:00.0"});
    host.Add({.address = "0000:04:00.0", .classCode = 0x010802});
    Start();
    EXPECT_THAT(Detect(), ElementsAre("PCI 0002:03:00", kBoard, "PCI 03:01"));
    EXPECT_EQ(KeywordOf(kPci, "DetectedBoards[0].Name"), Is(kBoard));
    EXPECT_EQ(KeywordOf(kPci, "DetectedBoards[0].Product"), Is("PCI-ETHERNET"));
    EXPECT_EQ(KeywordOf(kPci, "DetectedBoards[1].Product"), Is("PCI-TELEPHONY"));
    EXPECT_EQ(KeywordOf(kPci, "DetectedBoards[1].Location.PCI.Slot"), Is("1"));
    EXPECT_EQ(KeywordOf(kPci, "DetectedBoards[2].Location.PCI.Bus"), Is("515"));
}

TEST_F(PciDetection, IsDoneWhenItIsAskedFor) {
    Start();
    EXPECT_EQ(KeywordOf(kPci, "DetectedBoards.Count"), Is("0"));
    EXPECT_THAT(Detect(), ElementsAre(kBoard));
    fs::remove_all(host.Device(kCard));
    EXPECT_THAT(detectedNames(), ElementsAre(kBoard));
    EXPECT_THAT(Detect(), IsEmpty());
}

TEST_F(PciDetection, GivesAnAddedBoardWhatTheHardwareShows) {
    host.SetSerialNumber(kCard, 0x0102030405060708);
    host.AddInterface(kCard, "eth0", "02:00:00:00:00:01\n");
    host.AddInterface(kCard, "eth1", "02:00:00:00:00:02\n");
    kernel.AddDriver(kDriver);
    host.Hold(kCard, kDriver);
    StartWithBoards();
    EXPECT_EQ(KeywordOf(kBoard, "Product"), Is("PCI-ETHERNET"));
    EXPECT_EQ(KeywordOf(kBoard, "Location.PCI.Bus"), Is("3"));
    EXPECT_EQ(KeywordOf(kBoard, "Eeprom.SerialNum"), Is("01-02-03-04-05-06-07-08"));
    EXPECT_EQ(KeywordOf(kBoard, "Driver.Name"), Is(kDriver));
    EXPECT_EQ(KeywordOf(kBoard, "Driver.BoardId"), Is(kCard));
    EXPECT_EQ(KeywordOf(kBoard, "NetworkInterface.Ethernet.Count"), Is("2"));
    EXPECT_EQ(KeywordOf(kBoard, "NetworkInterface.Ethernet[1].MAC_Address"),
              Is("02:00:00:00:00:02"));
    char name[64];
    EXPECT_EQ(_oamBoardLookupByMACAddress("02:00:00:00:00:02", name, sizeof name), OAM_SUCCESS);
    EXPECT_STREQ(name, kBoard);
}

TEST_F(PciDetection, LetsABoardFollowItsSlot) {
    host.AddInterface(kCard, "eth0", "02:00:00:00:00:01\n");
    StartWithBoards();
    ASSERT_EQ(Change(kBoard, "Location.PCI.Slot", "7"), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf(kBoard, "Driver.BoardId"), Is(""));
    EXPECT_EQ(KeywordOf(kBoard, "NetworkInterface.Ethernet.Count"), Is("0"));
    EXPECT_EQ(KeywordOf(kBoard, "NetworkInterface.Ethernet[0].MAC_Address"),
              Fails(OAMERR_NOT_FOUND));
    ASSERT_EQ(Change(kBoard, "Location.PCI.Slot", "0"), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf(kBoard, "NetworkInterface.Ethernet.Count"), Is("1"));
}

TEST_F(PciDetection, LeavesADriverThatTheUserHasTakenOut) {
    kernel.AddDriver(kDriver);
    host.Hold(kCard, kDriver);
    StartWithBoards();
    ASSERT_EQ(Change(kBoard, "Driver.Name", ""), OAM_SUCCESS);
    ASSERT_EQ(Change(kBoard, "AutoStart", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf(kBoard, "Driver.Name"), Is(""));
}

TEST_F(PciDetection, KeepsAtMostFourAddresses) {
    for (int i = 1; i < 8; ++i) {
        host.AddInterface(kCard, "eth" + std::to_string(i), "02:00:00:00:00:0" + std::to_string(i));
    }
    StartWithBoards();
    EXPECT_EQ(KeywordOf(kBoard, "NetworkInterface.Ethernet.Count"), Is("4"));
}

TEST_F(PciDetection, TellsWhenTheBusCannotBeListed) {
    Start();
    ASSERT_EQ(Change(kPci, "Sysfs.Root", home.Path("missing")), OAM_SUCCESS);
    EXPECT_THAT(Detect(), IsEmpty());
    EXPECT_THAT(alerts.HeardFrom(kPci),
                Contains(Said{OAMEVN_ALERT, OAM_ERROR, kPci,
                              "The PCI devices cannot be listed in " + home.Path("missing") +
                                  "/bus/pci/devices."}));
}

TEST_F(PciDetection, SurvivesATreeOfJunk) {
    for (const char* file : {"vendor", "device", "class", "config", "revision"}) {
        const auto device = host.Device("0000:04:00.0");
        host.Add({.address = "0000:04:00.0"});
        host.Write(device / file, std::string(200000, '\xff'));
        host.AddInterface("0000:04:00.0", "eth0", std::string("\0\xff\n", 3), "\x01",
                          std::string(200000, 'u'));
        Start();
        EXPECT_THAT(Detect(), Contains(kBoard)) << file;
        EXPECT_EQ(_oamAddDetectedBoard(kBoard), OAM_SUCCESS) << file;
        EXPECT_EQ(_oamDeleteBoard(nullptr), OAM_SUCCESS);
        fs::remove_all(device);
    }
}

// This machine's own devices are looked at and nothing more.
class PciDetectionHere : public ServiceTest {
  protected:
    static std::map<std::string, std::string> Drivers() {
        std::map<std::string, std::string> drivers;
        for (const auto& device : fs::directory_iterator("/sys/bus/pci/devices")) {
            const auto link = device.path() / "driver";
            drivers[device.path().filename()] = fs::exists(link) ? fs::read_symlink(link) : "";
        }
        return drivers;
    }
};

TEST_F(PciDetectionHere, LooksAtTheMachineAndLeavesItAsItIs) {
    if (!fs::exists("/sys/bus/pci/devices")) GTEST_SKIP() << "this machine has no PCI bus";
    fs::copy_file(PCI_PLUGIN_FILE, home.Path("lib/pci.bpi"));
    const auto before = Drivers();
    Start();
    EXPECT_EQ(KeywordOf(kPci, "Sysfs.Root"), Is("/sys"));
    EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    for (const auto& name : detectedNames()) {
        auto address = name.substr(sizeof "PCI");
        if (address.size() == sizeof "03:00" - 1) address.insert(0, "0000:");
        const auto isOfSlot = [&](const auto& device) { return device.first.starts_with(address); };
        EXPECT_TRUE(std::ranges::any_of(before, isOfSlot)) << name;
    }
    EXPECT_EQ(Drivers(), before);
}

}  // namespace
}  // namespace oam::test
