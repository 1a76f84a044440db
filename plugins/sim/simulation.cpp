// The plug-in's life, its chassis and what it hears.
#include "simulation.h"

#include <array>
#include <set>
#include <system_error>
#include <utility>

#include "board_keywords.h"
#include "chassis_file.h"
#include "chassis_source.h"
#include "kit/alert_record.h"
#include "kit/db_access.h"
#include "kit/kept_text.h"
#include "kit/text_scan.h"

namespace oam::sim {

oam_result Simulation::Begin() {
    kit::DbOpening object(objectName_, OAM_OPEN_WRITE | OAM_OPEN_PROVIDER);
    if (auto failed = object.Failure()) return failed;
    std::vector<std::string> repairs;
    if (auto failed = completeSettings(object.Handle(), objectName_, &repairs)) return failed;
    TakeSettings(object.Handle());
    if (auto failed = object.Close()) return failed;
    TellRepairs(repairs);
    LoadChassis();
    RememberStoredBoards();
    try {
        monitor_.Begin(chassis_, [name = objectName_](const std::vector<BoardEvent>& events) {
            raiseEvents(events, name);
        });
    } catch (const std::system_error&) {
        return OAMERR_CANT_CREATE_THREAD;
    }
    return OAM_SUCCESS;
}

void Simulation::End() {
    chassis_->End();
    monitor_.End(SensorMonitor::kPatience);
}

std::shared_ptr<const Settings> Simulation::CurrentSettings() const {
    const std::lock_guard hold(settingsLock_);
    return settings_;
}

void Simulation::TakeSettings(unsigned long handle) {
    auto settings = std::make_shared<const Settings>(readSettings(handle));
    const std::lock_guard hold(settingsLock_);
    settings_ = std::move(settings);
}

void Simulation::TellRepairs(const std::vector<std::string>& repairs) const {
    for (const auto& repair : repairs)
        kit::raiseAlert(OAMEVN_ALERT, OAM_ERROR, objectName_, repair);
}

void Simulation::ReceiveAlert(const oam_msg_tag* message) {
    switch (message->code) {
        case OAMEVN_RENAMED:
            return configured_.Rename(oamMessageText(message), oamMessageSource(message));
        case OAMEVN_DELETED:
            return configured_.Forget(oamMessageSource(message));
        default:
            return;
    }
}

void Simulation::LoadChassis() {
    const auto settings = CurrentSettings();
    const auto complain = [&](const std::string& where, const std::string& what) {
        kit::raiseAlert(OAMEVN_ALERT, OAM_ERROR, objectName_,
                        settings->chassisFile + where + ": " + what);
    };
    const auto text = chassisText(settings->chassisFile);
    if (!text) return complain("", "the file cannot be read; the chassis stays as it is.");
    const auto reading = parseChassis(*text);
    for (const auto& problem : reading.problems) {
        complain(problem.line > 0 ? ":" + std::to_string(problem.line) : "", problem.what + ".");
    }
    raiseEvents(chassis_->Load(reading.boards, settings->thresholds), objectName_);
}

void Simulation::DetectBoards() {
    LoadChassis();
    const auto settings = CurrentSettings();
    std::vector<DetectedBoard> boards;
    std::set<std::string> foreign;
    for (const auto& board : chassis_->Boards()) {
        if (!board->IsPresent()) continue;
        const auto plan = board->Plan();
        if (settings->Serves(plan.product)) {
            boards.push_back({plan.name, plan.product, plan.location});
        } else if (foreign.insert(plan.product).second && foreign.size() <= kMostProblems) {
            kit::raiseAlert(OAMEVN_ALERT, OAM_ERROR, objectName_,
                            kit::quoted(plan.product) +
                                " is none of the products; its boards are not detected.");
        }
    }
    detected_.Replace(std::move(boards));
    monitor_.Wake();
}

// Boards of earlier runs come out of the database without a call of the plug-in.
void Simulation::RememberStoredBoards() {
    const auto settings = CurrentSettings();
    std::array<char, kit::kLongestName + 1> name;
    for (int i = 0; !_oamDbEnumObjects(i, name.data(), name.size()); ++i) {
        const kit::DbOpening object(name.data(), OAM_OPEN_READ);
        if (object.Failure()) continue;
        const auto product = kit::readKeyword(object.Handle(), "Product");
        if (!product || !settings->Serves(*product)) continue;
        configured_.Remember(name.data(),
                             {.product = *product,
                              .location = readLocation(object.Handle()),
                              .thresholds = readThresholds(object.Handle(), settings->thresholds)});
    }
}

}  // namespace oam::sim
