// A made-up kernel tree below a directory, as the plug-in reads it at "/sys".
//
// Nothing reacts to what is written into it; fake_kernel.h does that.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace oam::test {

struct PciFunction {
    std::string address;  // "0000:03:00.0"
    std::uint16_t vendor = 0x8086;
    std::uint16_t device = 0x10d3;
    std::uint32_t classCode = 0x020000;
};

class PciHost {
  public:
    // Makes the directory and the empty bus.
    explicit PciHost(std::filesystem::path root);

    std::string Root() const { return root_.string(); }
    std::filesystem::path Device(std::string_view address) const;
    std::filesystem::path Driver(std::string_view name) const;

    // With a configuration space that answers as the kernel's files say.
    void Add(const PciFunction& function) const;
    void AddDriver(std::string_view name) const;

    // The link that tells which driver holds a device; Holder is empty without one.
    void Hold(std::string_view address, std::string_view driver) const;
    void LetGo(std::string_view address) const;
    std::string Holder(std::string_view address) const;

    // Gives the device a configuration space with a serial number capability; the lowest byte
    // first.
    void SetSerialNumber(std::string_view address, std::uint64_t number) const;

    // In "<device>/<below>/net"; `below` is the directory of a bus that the device carries.
    void AddInterface(std::string_view address, std::string_view name, std::string_view mac,
                      std::string_view carrier = "1", std::string_view state = "up",
                      std::string_view below = "") const;

    void Write(const std::filesystem::path& file, std::string_view bytes) const;
    std::string Read(const std::filesystem::path& file) const;

  private:
    std::filesystem::path root_;
};

// The bytes of a configuration space header.
std::string configuration(std::uint16_t vendor, std::uint16_t device);

}  // namespace oam::test
