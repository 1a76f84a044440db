// Objects and keywords: the entries that run under the service's manager lock.
#include <cstring>
#include <memory>
#include <optional>

#include "board_keywords.h"
#include "kit/db_access.h"
#include "kit/text_scan.h"
#include "simulation.h"
#include "value_check.h"

namespace oam::sim {
namespace {

// The service's rule for every text that it is answered.
oam_result answerText(const std::optional<std::string>& text, char* buffer, unsigned int size) {
    if (!text) return OAMERR_NOT_FOUND;
    if (buffer == nullptr) return OAM_SUCCESS;
    if (text->size() >= size) return OAMERR_NOT_ENOUGH_MEMORY;
    std::memcpy(buffer, text->c_str(), text->size() + 1);
    return OAM_SUCCESS;
}

}  // namespace

oam_result Simulation::CreateBoard(const std::string& name, const std::string& product) {
    const auto settings = CurrentSettings();
    kit::DbOpening object(name, OAM_OPEN_WRITE | OAM_OPEN_PROVIDER);
    if (auto failed = object.Failure()) return failed;
    if (auto failed = installBoardKeywords(object.Handle(), settings->thresholds)) return failed;
    configured_.Remember(name, {.product = product,
                                .location = readLocation(object.Handle()),
                                .thresholds = settings->thresholds});
    return object.Close();
}

// Nobody could stop the board once its configuration is gone.
oam_result Simulation::DestroyBoard(const std::string& name) {
    std::shared_ptr<SimulatedBoard> board;
    if (!Locate(name, &board)) board->Reset();
    configured_.Forget(name);
    return OAM_SUCCESS;
}

oam_result Simulation::OpenObject(unsigned long handle, unsigned int mode) {
    const auto name = kit::readKeyword(handle, "Name").value_or("");
    const OpenedObject object = {.name = name,
                                 .isPlugIn = kit::sameText(name, objectName_),
                                 .isWritable = (mode & OAM_OPEN_WRITE) != 0};
    if (object.isWritable && !object.isPlugIn) {
        // An imported or older board may lack what the rules are kept in.
        const kit::ProviderMode provider(handle);
        if (auto failed = installBoardKeywords(handle, CurrentSettings()->thresholds)) {
            return failed;
        }
    }
    handles_.Set(handle, object);
    return OAM_SUCCESS;
}

// The service may still refuse the change, when another board has the number or the disk is full.
// What is taken here then holds until the next change; where a board is, its table is asked.
oam_result Simulation::CloseObject(unsigned long handle) {
    const auto object = handles_.Remove(handle);
    if (!object.isWritable) return OAM_SUCCESS;
    if (!object.isPlugIn) return CloseBoard(handle, object.name);
    TakeSettings(handle);
    return OAM_SUCCESS;
}

oam_result Simulation::CloseBoard(unsigned long handle, const std::string& name) {
    const auto location = readLocation(handle);
    const auto board = chassis_->At(location);
    const auto plan = board ? std::make_optional(board->Plan()) : std::nullopt;
    const kit::ProviderMode provider(handle);
    if (auto failed = followSlot(handle, plan ? &*plan : nullptr)) return failed;
    configured_.Remember(name,
                         {.product = kit::readKeyword(handle, "Product").value_or(""),
                          .location = location,
                          .thresholds = readThresholds(handle, CurrentSettings()->thresholds)});
    return OAM_SUCCESS;
}

oam_result Simulation::SetKeyword(unsigned long handle, const std::string& keyword,
                                  std::string_view value) {
    const bool isPlugIn = handles_.Find(handle).isPlugIn;
    if (isPlugIn && DetectedBoards::Holds(keyword)) return OAMERR_ACCESS_DENIED;
    std::string stored;
    if (auto refused = checkChange(handle, keyword, value, &stored)) return refused;
    if (auto failed = _oamDbSetKeyword(handle, keyword.c_str(), stored.c_str())) return failed;
    if (!isPlugIn) return OAM_SUCCESS;

    // A count that grew needs its elements, before the client sets them.
    const kit::ProviderMode provider(handle);
    std::vector<std::string> repairs;
    const auto failed = completeSettings(handle, objectName_, &repairs);
    TellRepairs(repairs);
    return failed;
}

oam_result Simulation::GetKeyword(unsigned long handle, const std::string& keyword, char* buffer,
                                  unsigned int size) {
    if (handles_.Find(handle).isPlugIn && DetectedBoards::Holds(keyword)) {
        return answerText(detected_.Get(keyword), buffer, size);
    }
    return _oamDbGetKeyword(handle, keyword.c_str(), buffer, size);
}

oam_result Simulation::GetQualifier(unsigned long handle, const std::string& keyword,
                                    const std::string& qualifier, char* buffer, unsigned int size) {
    if (handles_.Find(handle).isPlugIn && DetectedBoards::Holds(keyword)) {
        return answerText(detected_.GetQualifier(keyword, qualifier), buffer, size);
    }
    return _oamDbGetQualifier(handle, keyword.c_str(), qualifier.c_str(), buffer, size);
}

}  // namespace oam::sim
