// Operations and status: the entries that run with no lock held, several at once.
#include <algorithm>
#include <array>

#include "board_test.h"
#include "kit/alert_record.h"
#include "kit/text_scan.h"
#include "network_interfaces.h"
#include "pci_codes.h"
#include "pci_plugin.h"

namespace oam::pci {
namespace {

// The service's outcome alert tells only that an operation failed; this one tells where and why.
oam_result told(oam_result failed, const std::string& board, const std::string& where) {
    const char* const name = _oamGetText(failed);
    kit::raiseAlert(OAMEVN_ALERT, OAM_ERROR, board,
                    where + ": " + (name != nullptr ? name : std::to_string(failed)));
    return failed;
}

enum DriverState { kNoneHeld = 0, kSomeHeld = 1, kAllHeld = 2 };

// By a driver, of the board's functions.
DriverState driverState(const PciBoard& board, const DriverBinding& binding) {
    const auto held = std::ranges::count_if(board.functions, [&](const PciAddress& function) {
        return !binding.HeldBy(function).empty();
    });
    if (held == 0) return kNoneHeld;
    return static_cast<std::size_t>(held) == board.functions.size() ? kAllHeld : kSomeHeld;
}

std::vector<NetworkInterface> interfacesOf(const SysfsTree& tree, const PciBoard& board) {
    std::vector<NetworkInterface> interfaces;
    for (const auto& function : board.functions) {
        const auto own = networkInterfaces(tree, function);
        interfaces.insert(interfaces.end(), own.begin(), own.end());
    }
    return interfaces;
}

// The best that any interface has; 0 without interfaces.
int linkState(const std::vector<NetworkInterface>& interfaces) {
    int best = 0;
    for (const auto& interface : interfaces) {
        best = std::max(best, static_cast<int>(interface.link));
    }
    return best;
}

enum Selector : unsigned int { kDriverState, kLinkState, kInterfaceCount, kSelectors };

}  // namespace

oam_result PciPlugin::Prepare(const std::string& name, Job* job) const {
    job->settings = CurrentSettings();
    if (auto failed = findConfiguredBoard(name, &job->configured)) return failed;
    auto board = boardAt(*job->settings, job->configured.location);
    if (!board) return PCI_NOT_IN_SLOT;
    if (!kit::sameText(board->product, job->configured.product)) return PCI_WRONG_PRODUCT;
    job->board = std::move(*board);
    return OAM_SUCCESS;
}

DriverBinding PciPlugin::Binding(const Job& job) {
    return DriverBinding(job.settings->tree, job.settings->bindLimit, &patience_);
}

oam_result PciPlugin::StartBoard(const std::string& name) {
    Job job;
    if (auto failed = Prepare(name, &job)) return told(failed, name, "start");
    auto binding = Binding(job);
    if (!job.settings->mayControl) {
        // What has its driver runs already.
        const bool isRunning = driverState(job.board, binding) == kAllHeld;
        return isRunning ? OAM_SUCCESS : told(PCI_CONTROL_OFF, name, "start");
    }
    std::vector<PciAddress> taken;
    for (const auto& function : job.board.functions) {
        const bool wasFree = binding.HeldBy(function).empty();
        if (auto failed = binding.Bind(function, job.configured.driver)) {
            // Half a board is no started board.
            for (const auto& earlier : taken) (void)binding.Release(earlier);
            return told(failed, name, "start of " + function.Text());
        }
        if (wasFree) taken.push_back(function);
    }
    return OAM_SUCCESS;
}

oam_result PciPlugin::StopBoard(const std::string& name) {
    Job job;
    if (auto failed = Prepare(name, &job)) return told(failed, name, "stop");
    auto binding = Binding(job);
    if (!job.settings->mayControl) {
        const bool isStopped = driverState(job.board, binding) == kNoneHeld;
        return isStopped ? OAM_SUCCESS : told(PCI_CONTROL_OFF, name, "stop");
    }
    auto result = OAM_SUCCESS;
    for (const auto& function : job.board.functions) {
        if (auto failed = binding.Release(function)) {
            result = told(failed, name, "stop of " + function.Text());
        }
    }
    return result;
}

oam_result PciPlugin::TestBoard(const std::string& name, unsigned int tests) {
    if (tests > kAllTests) return told(OAMERR_BOARD_SELFTEST_INVALID, name, "test");
    if (tests == 0) tests = kAllTests;
    Job job;
    if (auto failed = Prepare(name, &job)) return told(failed, name, "test");
    const auto& tree = job.settings->tree;
    for (const auto& function : job.board.functions) {
        auto failed = OAM_SUCCESS;
        if (tests & kTestConfiguration) failed = testConfiguration(tree, function);
        if (!failed && (tests & kTestLink)) failed = testLink(tree, function);
        if (failed) return told(failed, name, "test of " + function.Text());
    }
    return OAM_SUCCESS;
}

// What a buffer means to a board is known to its maker's driver kit alone.
oam_result PciPlugin::SendBuffer(const std::string& name) {
    Job job;
    if (auto failed = Prepare(name, &job)) return failed;
    return OAMERR_NOT_SUPPORTED_WARNING;
}

oam_result PciPlugin::GetBoardStatus(const std::string& name, unsigned int selector, int* status) {
    if (selector >= kSelectors) return OAMERR_NOT_SUPPORTED_WARNING;
    if (status == nullptr) return OAMERR_GET_BOARD_STATUS_FAIL;
    Job job;
    if (auto failed = Prepare(name, &job)) return failed;
    if (selector == kDriverState) {
        *status = driverState(job.board, Binding(job));
        return OAM_SUCCESS;
    }
    const auto interfaces = interfacesOf(job.settings->tree, job.board);
    *status = selector == kLinkState ? linkState(interfaces) : static_cast<int>(interfaces.size());
    return OAM_SUCCESS;
}

}  // namespace oam::pci
