#include "driver_binding.h"

#include <thread>

#include "fake_kernel.h"
#include "host_test.h"
#include "pci_codes.h"

namespace oam::pci {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kDriver = "e1000e";

class Binding : public HostTest {
  protected:
    void SetUp() override {
        host.Add({.address = kCard});
        kernel.AddDriver(kDriver);
        kernel.AddDriver("vfio-pci", test::Knows::kNone);
    }

    oam_result Bind(const std::string& driver) { return binding.Bind(at(kCard), driver); }
    oam_result Release() { return binding.Release(at(kCard)); }
    std::string Override() const { return host.Read(host.Device(kCard) / "driver_override"); }

    test::FakeKernel kernel{host};
    Patience patience;
    // Generous where the kernel obeys; tests of one that does not set it short.
    std::chrono::milliseconds limit = 30s;
    DriverBinding binding{tree, limit, &patience};
};

TEST_F(Binding, GivesTheDeviceToTheDriver) {
    EXPECT_EQ(binding.HeldBy(at(kCard)), "");
    EXPECT_EQ(Bind(kDriver), OAM_SUCCESS);
    EXPECT_EQ(binding.HeldBy(at(kCard)), kDriver);
    EXPECT_THAT(kernel.Orders(), ElementsAre("bind e1000e 0000:03:00.0"));
}

TEST_F(Binding, GivesItToADriverThatDoesNotListIt) {
    EXPECT_EQ(Bind("vfio-pci"), OAM_SUCCESS);
    EXPECT_EQ(host.Holder(kCard), "vfio-pci");
    EXPECT_EQ(Override(), "vfio-pci\n");
}

TEST_F(Binding, LeavesTheChoiceToTheKernelWithoutAName) {
    EXPECT_EQ(Bind(""), OAM_SUCCESS);
    EXPECT_EQ(host.Holder(kCard), kDriver);
    EXPECT_THAT(kernel.Orders(), ElementsAre("probe 0000:03:00.0"));
}

TEST_F(Binding, GivesNoOrderWhenTheDriverHoldsItAlready) {
    host.Hold(kCard, kDriver);
    EXPECT_EQ(Bind(kDriver), OAM_SUCCESS);
    EXPECT_EQ(Bind(""), OAM_SUCCESS);
    EXPECT_THAT(kernel.Orders(), IsEmpty());
}

TEST_F(Binding, TakesItFromAnotherDriverFirst) {
    host.Hold(kCard, kDriver);
    EXPECT_EQ(Bind("vfio-pci"), OAM_SUCCESS);
    EXPECT_EQ(host.Holder(kCard), "vfio-pci");
    EXPECT_THAT(kernel.Orders(),
                ElementsAre("unbind e1000e 0000:03:00.0", "bind vfio-pci 0000:03:00.0"));
}

TEST_F(Binding, IsReleasedWithItsOverride) {
    ASSERT_EQ(Bind("vfio-pci"), OAM_SUCCESS);
    EXPECT_EQ(Release(), OAM_SUCCESS);
    EXPECT_EQ(host.Holder(kCard), "");
    EXPECT_EQ(Override(), "\n");
    EXPECT_EQ(Bind(""), OAM_SUCCESS);
    EXPECT_EQ(host.Holder(kCard), kDriver);
}

TEST_F(Binding, OfAFreeDeviceIsReleasedWithoutAnOrder) {
    EXPECT_EQ(Release(), OAM_SUCCESS);
    EXPECT_THAT(kernel.Orders(), IsEmpty());
    EXPECT_EQ(Override(), "(null)\n");
}

TEST_F(Binding, RefusesADriverThatTheKernelLacks) {
    for (const char* driver : {"unheard", "..", ".", "../e1000e", "/e1000e"}) {
        EXPECT_EQ(Bind(driver), PCI_NO_SUCH_DRIVER) << driver;
    }
    EXPECT_EQ(Bind(std::string(5000, 'x')), PCI_NO_SUCH_DRIVER);
    EXPECT_THAT(kernel.Orders(), IsEmpty());
}

TEST_F(Binding, TellsThatTheOrderWasNotTaken) {
    std::filesystem::remove(host.Driver(kDriver) / "bind");
    EXPECT_EQ(Bind(kDriver), PCI_BIND_REFUSED);
    EXPECT_EQ(Override(), "\n");
    host.Hold(kCard, kDriver);
    std::filesystem::remove(host.Driver(kDriver) / "unbind");
    EXPECT_EQ(Release(), PCI_UNBIND_REFUSED);
}

TEST_F(Binding, TellsThatTheOrderHadNoEffect) {
    kernel.Ignore(kCard);
    DriverBinding impatient(tree, 20ms, &patience);
    EXPECT_EQ(impatient.Bind(at(kCard), "vfio-pci"), PCI_NOT_BOUND);
    EXPECT_EQ(Override(), "\n");
    host.Hold(kCard, kDriver);
    EXPECT_EQ(impatient.Release(at(kCard)), PCI_STILL_BOUND);
    EXPECT_EQ(impatient.Bind(at(kCard), "vfio-pci"), PCI_STILL_BOUND);
}

TEST_F(Binding, OfADeviceThatIsGoneFails) {
    DriverBinding impatient(tree, 20ms, &patience);
    EXPECT_EQ(impatient.Bind(at("0000:09:00.0"), kDriver), PCI_NOT_BOUND);
    EXPECT_EQ(impatient.Release(at("0000:09:00.0")), OAM_SUCCESS);
}

TEST_F(Binding, WaitsNoLongerWhenThePlugInEnds) {
    kernel.Ignore(kCard);
    std::thread ending([this] { patience.End(); });
    EXPECT_EQ(Bind(kDriver), PCI_NOT_BOUND);
    ending.join();
}

TEST(DriverName, IsOneThatAPathCanHold) {
    EXPECT_TRUE(canNameDriver("Intel ICH"));
    EXPECT_TRUE(canNameDriver("..."));
    for (const char* bad : {"", ".", "..", "a/b", "/"}) EXPECT_FALSE(canNameDriver(bad)) << bad;
    EXPECT_FALSE(canNameDriver(std::string(65, 'x')));
}

}  // namespace
}  // namespace oam::pci
