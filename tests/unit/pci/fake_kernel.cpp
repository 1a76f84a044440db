#include "fake_kernel.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace oam::test {
namespace {

std::string firstLine(std::string text) { return text.substr(0, text.find('\n')); }

}  // namespace

FakeKernel::FakeKernel(const PciHost& host)
    : host_(host), inotify_(inotify_init1(IN_CLOEXEC)), stop_(eventfd(0, EFD_CLOEXEC)) {
    Watch(std::filesystem::path(host.Root()) / "bus/pci/drivers_probe", {.word = "probe"});
    thread_ = std::thread([this] { Run(); });
}

FakeKernel::~FakeKernel() {
    const std::uint64_t one = 1;
    EXPECT_EQ(write(stop_, &one, sizeof one), static_cast<ssize_t>(sizeof one));
    thread_.join();
    close(inotify_);
    close(stop_);
}

void FakeKernel::AddDriver(const std::string& name, Knows knows) {
    host_.AddDriver(name);
    Watch(host_.Driver(name) / "bind", {.word = "bind", .driver = name});
    Watch(host_.Driver(name) / "unbind", {.word = "unbind", .driver = name});
    const std::lock_guard hold(lock_);
    drivers_[name] = knows;
}

void FakeKernel::Ignore(const std::string& address) {
    const std::lock_guard hold(lock_);
    ignored_.push_back(address);
}

std::vector<std::string> FakeKernel::Orders() const {
    const std::lock_guard hold(lock_);
    return orders_;
}

void FakeKernel::Watch(const std::filesystem::path& file, const Order& order) {
    const std::lock_guard hold(lock_);
    watched_[inotify_add_watch(inotify_, file.c_str(), IN_CLOSE_WRITE)] = order;
}

void FakeKernel::Run() {
    while (true) {
        std::array<pollfd, 2> events = {pollfd{inotify_, POLLIN, 0}, pollfd{stop_, POLLIN, 0}};
        (void)poll(events.data(), events.size(), -1);
        if (events[1].revents != 0) return;
        alignas(inotify_event) std::array<char, 4096> block;
        const auto size = read(inotify_, block.data(), block.size());
        for (ssize_t at = 0; at < size;) {
            inotify_event event;
            std::memcpy(&event, block.data() + at, sizeof event);
            at += static_cast<ssize_t>(sizeof event + event.len);
            if ((event.mask & IN_CLOSE_WRITE) == 0) continue;  // the file itself went away
            const std::lock_guard hold(lock_);
            const auto& order = watched_.at(event.wd);
            const auto file = order.driver.empty()
                                  ? std::filesystem::path(host_.Root()) / "bus/pci/drivers_probe"
                                  : host_.Driver(order.driver) / order.word;
            Obey(order, host_.Read(file));
        }
    }
}

void FakeKernel::Obey(const Order& order, const std::string& address) {
    orders_.push_back(order.word + (order.driver.empty() ? "" : " " + order.driver) + " " +
                      address);
    if (std::ranges::find(ignored_, address) != ignored_.end()) return;
    if (!std::filesystem::exists(host_.Device(address))) return;
    const auto holder = host_.Holder(address);
    if (order.word == "unbind") {
        if (holder == order.driver) host_.LetGo(address);
        return;
    }
    if (!holder.empty()) return;
    for (const auto& [driver, knows] : drivers_) {
        const bool isMeant = order.driver.empty() || order.driver == driver;
        if (isMeant && Takes(driver, address)) return host_.Hold(address, driver);
    }
}

bool FakeKernel::Takes(const std::string& driver, const std::string& address) const {
    auto wanted = firstLine(host_.Read(host_.Device(address) / "driver_override"));
    if (wanted == "(null)") wanted.clear();
    return wanted.empty() ? drivers_.at(driver) == Knows::kEveryDevice : wanted == driver;
}

}  // namespace oam::test
