#include "pci_library.h"

#include <array>
#include <csetjmp>
#include <cstdio>

extern "C" {
#include <pci/pci.h>
}

namespace oam::pci {
namespace {

constexpr int kSerialNumberOffset = 4;
constexpr std::uint64_t kAllOnes = ~std::uint64_t{0};

// The error function has no argument of ours, so the way back is the thread's.
thread_local std::jmp_buf* wayBack = nullptr;

// In this form it is part of the function's type for clang, as the library asks.
__attribute__((noreturn)) void leave(char*, ...) { std::longjmp(*wayBack, 1); }
void ignore(char*, ...) {}

// False when the library gave up. The work is plain calls: nothing in it may need a destructor,
// because a jump passes it by.
bool attempt(void (*work)(void*), void* argument) {
    std::jmp_buf here;
    wayBack = &here;
    if (setjmp(here) != 0) return false;
    work(argument);
    return true;
}

template <class Work>
bool attempt(Work& work) {
    return attempt([](void* given) { (*static_cast<Work*>(given))(); }, &work);
}

}  // namespace

PciLibrary::PciLibrary(const std::string& sysfsRoot) {
    access_ = pci_alloc();
    if (access_ == nullptr) return;
    access_->method = PCI_ACCESS_SYS_BUS_PCI;
    access_->error = leave;
    access_->warning = ignore;
    access_->debug = ignore;
    char name[] = "sysfs.path";
    std::string path = sysfsRoot + "/bus/pci";
    auto begin = [this, &name, value = path.data()] {
        (void)pci_set_param(access_, name, value);
        pci_init(access_);
    };
    if (!attempt(begin)) Close();
}

PciLibrary::~PciLibrary() { Close(); }

void PciLibrary::Close() {
    if (access_ == nullptr) return;
    auto end = [this] { pci_cleanup(access_); };
    (void)attempt(end);
    access_ = nullptr;
}

template <class Work>
bool PciLibrary::WithDevice(const PciAddress& address, Work work) {
    if (access_ == nullptr) return false;
    pci_dev* device = nullptr;
    bool isDone = false;
    auto use = [&] {
        device = pci_get_dev(
            access_, static_cast<int>(address.Domain()), static_cast<int>(address.Bus()),
            static_cast<int>(address.location.slot), static_cast<int>(address.function));
        isDone = work(device);
    };
    auto release = [&] { pci_free_dev(device); };
    const bool isWhole = attempt(use);
    if (device != nullptr) (void)attempt(release);
    return isWhole && isDone;
}

std::optional<DeviceIdentity> PciLibrary::Identity(const PciAddress& address) {
    DeviceIdentity identity;
    const bool isRead = WithDevice(address, [&identity](pci_dev* device) {
        (void)pci_fill_info(device, PCI_FILL_IDENT | PCI_FILL_CLASS | PCI_FILL_CLASS_EXT);
        identity.vendor = device->vendor_id;
        identity.device = device->device_id;
        identity.classCode =
            static_cast<std::uint32_t>(device->device_class) << 8 | device->prog_if;
        return true;
    });
    if (!isRead) return {};
    return identity;
}

std::optional<DeviceIdentity> PciLibrary::Answer(const PciAddress& address) {
    std::array<std::uint8_t, 4> bytes{};
    const bool isRead = WithDevice(address, [&bytes](pci_dev* device) {
        return pci_read_block(device, PCI_VENDOR_ID, bytes.data(), bytes.size()) != 0;
    });
    if (!isRead) return {};
    return DeviceIdentity{.vendor = static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8),
                          .device = static_cast<std::uint16_t>(bytes[2] | bytes[3] << 8)};
}

std::optional<std::string> PciLibrary::SerialNumber(const PciAddress& address) {
    std::array<std::uint8_t, 8> bytes{};
    const bool isRead = WithDevice(address, [&bytes](pci_dev* device) {
        const auto* const found = pci_find_cap(device, PCI_EXT_CAP_ID_DSN, PCI_CAP_EXTENDED);
        if (found == nullptr) return false;
        const int start = static_cast<int>(found->addr) + kSerialNumberOffset;
        return pci_read_block(device, start, bytes.data(), bytes.size()) != 0;
    });
    if (!isRead) return {};
    std::uint64_t number = 0;
    std::string text;
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) {
        number = number << 8 | *byte;
        std::array<char, 4> digits{};
        (void)std::snprintf(digits.data(), digits.size(), text.empty() ? "%02x" : "-%02x", *byte);
        text += digits.data();
    }
    if (number == 0 || number == kAllOnes) return {};
    return text;
}

}  // namespace oam::pci
