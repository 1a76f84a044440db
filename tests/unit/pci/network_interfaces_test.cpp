#include "network_interfaces.h"

#include "host_test.h"

namespace oam::pci {
namespace {

using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class NetworkInterfaces : public HostTest {
  protected:
    void SetUp() override { host.Add({.address = kCard}); }
    std::vector<NetworkInterface> All() const { return networkInterfaces(tree, at(kCard)); }
    Link LinkWith(const char* carrier, const char* state) const {
        std::filesystem::remove_all(host.Device(kCard) / "net");
        host.AddInterface(kCard, "eth0", "02:00:00:00:00:01\n", carrier, state);
        return All().at(0).link;
    }
};

TEST_F(NetworkInterfaces, AreFoundInNameOrder) {
    host.AddInterface(kCard, "eth1", "02:00:00:00:00:0B\n");
    host.AddInterface(kCard, "eth0", "02:00:00:00:00:0a\n");
    EXPECT_THAT(All(), ElementsAre(Field(&NetworkInterface::macAddress, "02:00:00:00:00:0a"),
                                   Field(&NetworkInterface::macAddress, "02:00:00:00:00:0b")));
}

TEST_F(NetworkInterfaces, AreFoundOnABusThatTheDeviceCarries) {
    host.AddInterface(kCard, "eth0", "02:00:00:00:00:01", "1", "up", "virtio2");
    EXPECT_THAT(All(), ElementsAre(Field(&NetworkInterface::name, "eth0")));
}

TEST_F(NetworkInterfaces, AreNotLookedForBehindLinks) {
    host.Add({.address = "0000:04:00.0"});
    host.AddInterface("0000:04:00.0", "eth0", "02:00:00:00:00:01");
    std::filesystem::create_symlink("../0000:04:00.0", host.Device(kCard) / "neighbour");
    EXPECT_THAT(All(), IsEmpty());
}

TEST_F(NetworkInterfaces, HaveNoAddressThatIsNone) {
    for (const char* mac : {"", "00:00:00:00:00:00", "02:00:00:00:00", "02-00-00-00-00-01",
                            "02:00:00:00:00:0g", "02:00:00:00:00:01:02", "\xff\xff\xff"}) {
        std::filesystem::remove_all(host.Device(kCard) / "net");
        host.AddInterface(kCard, "eth0", mac);
        EXPECT_THAT(All(), ElementsAre(Field(&NetworkInterface::macAddress, ""))) << mac;
    }
}

TEST_F(NetworkInterfaces, TellTheirLink) {
    EXPECT_EQ(LinkWith("1\n", "up\n"), Link::Up);
    EXPECT_EQ(LinkWith("1", "unknown"), Link::Up);
    EXPECT_EQ(LinkWith("1", "dormant"), Link::Down);
    EXPECT_EQ(LinkWith("0", "down"), Link::Down);
    EXPECT_EQ(LinkWith("nonsense", "up"), Link::Down);
    EXPECT_EQ(LinkWith("", "down"), Link::Off);
    EXPECT_EQ(LinkWith("", "up"), Link::Up);
}

TEST_F(NetworkInterfaces, AreBounded) {
    for (int i = 0; i < 100; ++i) {
        host.AddInterface(kCard, "eth" + std::to_string(i), "02:00:00:00:00:01");
    }
    EXPECT_THAT(All(), SizeIs(64));
}

TEST_F(NetworkInterfaces, AreDirectoriesOnly) {
    std::filesystem::create_directories(host.Device(kCard) / "net");
    host.Write(host.Device(kCard) / "net/file", "");
    EXPECT_THAT(All(), IsEmpty());
    EXPECT_THAT(networkInterfaces(tree, at("0000:09:00.0")), IsEmpty());
}

}  // namespace
}  // namespace oam::pci
