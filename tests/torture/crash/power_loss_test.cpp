// The power fails at any moment of everything that changes files: whatever the disk kept of what
// was not synced, the next start finds the old state or the new, and the new one once it was
// acknowledged.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "operation.h"
#include "points.h"
#include "recorded_disk.h"
#include "traced_child.h"

namespace oam::torture {
namespace {

namespace fs = std::filesystem;

// To think of all disks takes its time, too.
int objects() { return IsFull() ? 50 : 20; }
int randomSubsets() { return IsFull() ? 64 : 8; }
constexpr std::size_t kQuickStates = 40;

class Unpowered : public testing::TestWithParam<Operation> {
  protected:
    void Record(Host& host) {
        host.Renew();
        disk_ = std::make_unique<RecordedDisk>(host.Path("oam/cfg"));
        RunTraced([&] { return Perform(host, GetParam()); },
                  [](const SystemCall&) { return Decision{}; },
                  [&](const SystemCall& call, long result) { disk_->Observe(call, result); });
    }

    static void Restore(Host& host, const Files& files) {
        host.Renew();
        fs::remove_all(host.Path("oam/cfg"));
        fs::create_directory(host.Path("oam/cfg"));
        for (const auto& [name, data] : files) {
            const fs::path path = host.Path("oam/cfg/" + name);
            fs::create_directories(path.parent_path());
            std::ofstream(path, std::ios::binary) << *data;
        }
    }

    std::unique_ptr<RecordedDisk> disk_;
};

TEST_P(Unpowered, AtAnyMomentLeavesTheOldStateOrTheNewAndKeepsWhatWasAcknowledged) {
    // What a disk keeps is thought out here, so there need not be one.
    Host host(objects(), "/dev/shm");
    const States wanted = StatesOf(host, GetParam());
    Record(host);
    const auto states = disk_->States(randomSubsets());
    const auto chosen = ChosenPoints(states.size(), kQuickStates);
    for (const std::size_t index : chosen) {
        const auto& state = states[index];
        SCOPED_TRACE("after event " + std::to_string(state.event) + " of " +
                     std::to_string(disk_->Events()) + ", " + state.what);
        Restore(host, *state.files);
        const Look look = host.LookAt();
        ASSERT_TRUE(look.isStarted) << look.digest;
        const bool isAcknowledged = state.event == disk_->Events();
        ASSERT_TRUE(look.digest == wanted.after ||
                    (!isAcknowledged && look.digest == wanted.before))
            << "found:\n"
            << look.digest;
    }
    TellFigures(std::string("power loss, ") + GetParam().name,
                std::to_string(chosen.size()) + " of " + std::to_string(states.size()) +
                    " disks after " + std::to_string(disk_->Events()) + " events, 0 lost");
}

// An export leaves the configuration alone.
std::vector<Operation> changes() {
    std::vector<Operation> all = Operations();
    std::erase_if(all, [](const Operation& row) { return NameOf(row) == "export"; });
    return all;
}

INSTANTIATE_TEST_SUITE_P(Each, Unpowered, testing::ValuesIn(changes()),
                         [](const auto& row) { return NameOf(row.param); });

}  // namespace
}  // namespace oam::torture
