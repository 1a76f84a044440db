// The plug-in's life, its settings and its view of the bus.
#include "pci_plugin.h"

#include "kit/alert_record.h"
#include "kit/db_access.h"

namespace oam::pci {

oam_result PciPlugin::Begin() {
    kit::DbOpening object(objectName_, OAM_OPEN_WRITE | OAM_OPEN_PROVIDER);
    if (auto failed = object.Failure()) return failed;
    std::vector<std::string> repairs;
    if (auto failed = completeSettings(object.Handle(), &repairs)) return failed;
    TakeSettings(object.Handle());
    if (auto failed = object.Close()) return failed;
    Tell(repairs);
    return OAM_SUCCESS;
}

oam_result PciPlugin::DetectBoards() {
    const auto settings = CurrentSettings();
    auto boards = scanBoards(*settings);
    if (!boards) {
        Tell({"The PCI devices cannot be listed in " + settings->tree.Devices() + "."});
        boards.emplace();
    }
    auto detected = std::make_shared<const std::vector<PciBoard>>(std::move(*boards));
    const std::lock_guard hold(lock_);
    detected_ = std::move(detected);
    return OAM_SUCCESS;
}

std::shared_ptr<const Settings> PciPlugin::CurrentSettings() const {
    const std::lock_guard hold(lock_);
    return settings_;
}

std::shared_ptr<const std::vector<PciBoard>> PciPlugin::Detected() const {
    const std::lock_guard hold(lock_);
    return detected_;
}

void PciPlugin::TakeSettings(unsigned long handle) {
    auto settings = std::make_shared<const Settings>(readSettings(handle));
    const std::lock_guard hold(lock_);
    settings_ = std::move(settings);
}

void PciPlugin::Tell(const std::vector<std::string>& troubles) const {
    for (const auto& trouble : troubles) {
        kit::raiseAlert(OAMEVN_ALERT, OAM_ERROR, objectName_, trouble);
    }
}

}  // namespace oam::pci
