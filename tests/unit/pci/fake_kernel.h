// The kernel's side of the made-up tree: a thread that obeys what is written to the drivers' files.
//
// It binds and unbinds by making and removing the link that tells who holds a device, and keeps the
// override's rule: a device with one is taken by that driver alone, and a driver that does not know
// the device takes it only by the override.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "pci_host.h"

namespace oam::test {

enum class Knows { kEveryDevice, kNone };

class FakeKernel {
  public:
    explicit FakeKernel(const PciHost& host);
    ~FakeKernel();
    FakeKernel(const FakeKernel&) = delete;
    FakeKernel& operator=(const FakeKernel&) = delete;

    void AddDriver(const std::string& name, Knows knows = Knows::kEveryDevice);
    // Takes the order and does nothing.
    void Ignore(const std::string& address);

    // "bind e1000e 0000:03:00.0", "probe 0000:03:00.0", in order; without those of the tests.
    std::vector<std::string> Orders() const;

  private:
    struct Order {
        std::string word;
        std::string driver{};
    };

    void Watch(const std::filesystem::path& file, const Order& order);
    void Run();
    void Obey(const Order& order, const std::string& address);
    bool Takes(const std::string& driver, const std::string& address) const;

    const PciHost& host_;
    int inotify_;
    int stop_;
    mutable std::mutex lock_;
    std::map<int, Order> watched_;
    std::map<std::string, Knows> drivers_;
    std::vector<std::string> ignored_;
    std::vector<std::string> orders_;
    std::thread thread_;
};

}  // namespace oam::test
