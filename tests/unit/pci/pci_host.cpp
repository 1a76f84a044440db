#include "pci_host.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace oam::test {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kHeader = 64;
constexpr std::size_t kExtended = 4096;

void put(std::string* bytes, std::size_t offset, std::uint64_t number, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        (*bytes)[offset + i] = static_cast<char>(number >> 8 * i);
    }
}

std::string hex(unsigned number, int digits) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%0*x\n", digits, number);
    return text.data();
}

}  // namespace

std::string configuration(std::uint16_t vendor, std::uint16_t device) {
    std::string bytes(kHeader, '\0');
    put(&bytes, 0, vendor, 2);
    put(&bytes, 2, device, 2);
    return bytes;
}

PciHost::PciHost(fs::path root) : root_(std::move(root)) {
    for (const char* part : {"devices", "drivers"}) {
        fs::create_directories(root_ / "bus/pci" / part);
    }
    Write(root_ / "bus/pci/drivers_probe", "");
}

fs::path PciHost::Device(std::string_view address) const {
    return root_ / "bus/pci/devices" / address;
}

fs::path PciHost::Driver(std::string_view name) const { return root_ / "bus/pci/drivers" / name; }

void PciHost::Add(const PciFunction& function) const {
    const auto device = Device(function.address);
    fs::create_directories(device);
    Write(device / "vendor", hex(function.vendor, 4));
    Write(device / "device", hex(function.device, 4));
    Write(device / "class", hex(function.classCode, 6));
    Write(device / "revision", "0x01\n");
    Write(device / "driver_override", "(null)\n");
    Write(device / "config", configuration(function.vendor, function.device));
}

void PciHost::AddDriver(std::string_view name) const {
    fs::create_directories(Driver(name));
    for (const char* order : {"bind", "unbind"}) Write(Driver(name) / order, "");
}

void PciHost::Hold(std::string_view address, std::string_view driver) const {
    fs::create_directory_symlink(fs::path("../../drivers") / driver, Device(address) / "driver");
}

void PciHost::LetGo(std::string_view address) const { fs::remove(Device(address) / "driver"); }

std::string PciHost::Holder(std::string_view address) const {
    const auto link = Device(address) / "driver";
    return fs::is_symlink(link) ? fs::read_symlink(link).filename().string() : "";
}

// A capability list with PCI Express alone, which is what makes the extended space count, and an
// extended list with the serial number alone.
void PciHost::SetSerialNumber(std::string_view address, std::uint64_t number) const {
    auto bytes = Read(Device(address) / "config");
    bytes.resize(kExtended, '\0');
    put(&bytes, 0x06, 0x0010, 2);
    put(&bytes, 0x34, 0x40, 1);
    put(&bytes, 0x40, 0x10, 1);
    put(&bytes, 0x100, 0x00010003, 4);
    put(&bytes, 0x104, number, 8);
    Write(Device(address) / "config", bytes);
}

void PciHost::AddInterface(std::string_view address, std::string_view name, std::string_view mac,
                           std::string_view carrier, std::string_view state,
                           std::string_view below) const {
    const auto directory = Device(address) / below / "net" / name;
    fs::create_directories(directory);
    Write(directory / "address", mac);
    Write(directory / "operstate", state);
    if (!carrier.empty()) Write(directory / "carrier", carrier);
}

void PciHost::Write(const fs::path& file, std::string_view bytes) const {
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    EXPECT_TRUE(stream.good()) << "cannot write " << file;
}

std::string PciHost::Read(const fs::path& file) const {
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << "cannot read " << file;
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace oam::test
