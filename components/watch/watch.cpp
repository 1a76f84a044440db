#include "watch.h"

#include "kit/alert_record.h"
#include "kit/answer_text.h"
#include "kit/keyword_store.h"
#include "tally_keywords.h"
#include "watch_code.h"
#include "watch_settings.h"

namespace oam::watch {

oam_result Watch::Begin() {
    kit::DbOpening object(objectName_, OAM_OPEN_WRITE | OAM_OPEN_PROVIDER);
    if (auto failed = object.Failure()) return failed;
    std::vector<std::string> repairs;
    if (auto failed = completeSettings(object.Handle(), &repairs)) return failed;
    TakeLimit(object.Handle());
    period_ = readPeriod(object.Handle());
    if (auto failed = object.Close()) return failed;
    for (const auto& repair : repairs) {
        kit::raiseAlert(OAMEVN_ALERT, OAM_ERROR, objectName_, repair);
    }
    return OAM_SUCCESS;
}

void Watch::ReceiveAlert(const oam_msg_tag* message) {
    // The component's own alerts come back to it: they tell nothing new of the board.
    if (message->code == WATCH_TOO_MANY_FAILURES) return;
    const HeardAlert alert = {.code = message->code,
                              .severity = message->severity,
                              .source = oamMessageSource(message),
                              .text = oamMessageText(message),
                              .time = std::chrono::system_clock::now(),
                              .moment = std::chrono::steady_clock::now()};
    const auto limit = Limit();
    if (!tallies_.Hear(alert, limit)) return;
    kit::raiseAlert(WATCH_TOO_MANY_FAILURES, OAM_ERROR, alert.source,
                    std::to_string(limit.failures) + " operations failed within " +
                        std::to_string(limit.window.count()) +
                        " seconds; the last: " + std::string(kit::trimmed(alert.text)));
}

oam_result Watch::OpenObject(unsigned long handle, unsigned int mode) {
    TakeLimit(handle);
    readers_.Set(handle, {.boards = Boards(), .isWritable = (mode & OAM_OPEN_WRITE) != 0});
    return OAM_SUCCESS;
}

oam_result Watch::CloseObject(unsigned long handle) {
    if (readers_.Remove(handle).isWritable) {
        TakeLimit(handle);
        TakePeriod(handle);
    }
    return OAM_SUCCESS;
}

oam_result Watch::SetKeyword(unsigned long handle, const std::string& keyword,
                             std::string_view value) {
    if (tallyKeywords().Holds(keyword)) return OAMERR_ACCESS_DENIED;
    const auto* const rule = kit::findRule(settingRules(), keyword);
    return kit::changeKeyword(handle, rule, keyword, value);
}

oam_result Watch::GetKeyword(unsigned long handle, const std::string& keyword, char* buffer,
                             unsigned int size) {
    if (tallyKeywords().Holds(keyword)) {
        return kit::answerText(Computed(handle, keyword), buffer, size);
    }
    return _oamDbGetKeyword(handle, keyword.c_str(), buffer, size);
}

oam_result Watch::GetQualifier(unsigned long handle, const std::string& keyword,
                               const std::string& qualifier, char* buffer, unsigned int size) {
    const auto& boards = tallyKeywords();
    if (keyword.empty()) {
        return kit::answerText(kit::keywordListQualifier({boards.Name()}, qualifier), buffer, size);
    }
    if (boards.Holds(keyword)) {
        const auto count = readers_.Find(handle).boards->size();
        return kit::answerText(boards.Qualifier(keyword, qualifier, count), buffer, size);
    }
    return _oamDbGetQualifier(handle, keyword.c_str(), qualifier.c_str(), buffer, size);
}

void Watch::TakeLimit(unsigned long handle) {
    const auto limit = readLimit(handle);
    const std::lock_guard hold(limitLock_);
    limit_ = limit;
}

void Watch::TakePeriod(unsigned long handle) {
    auto period = readPeriod(handle);
    if (period == period_) return;
    period_ = std::move(period);
    tallies_.Reset();
}

FailureLimit Watch::Limit() const {
    const std::lock_guard hold(limitLock_);
    return limit_;
}

// Those that the board table knows at this moment.
std::shared_ptr<const Watch::BoardIds> Watch::Boards() {
    BoardIds boards;
    for (const auto& [id, name] : tallies_.List()) {
        unsigned int number = 0;
        if (!_oamBoardGetNumber(name.c_str(), &number)) boards.push_back(id);
    }
    tallies_.Confirm(boards);
    return std::make_shared<const BoardIds>(std::move(boards));
}

std::optional<std::string> Watch::Computed(unsigned long handle, const std::string& keyword) {
    auto reader = readers_.Find(handle);
    if (tallyKeywords().IsCount(keyword)) {
        reader.boards = Boards();
        readers_.Set(handle, reader);
    }
    return tallyKeywords().Value(keyword, reader.boards->size(), [&](std::size_t index) {
        return tallies_.Get((*reader.boards)[index]);
    });
}

}  // namespace oam::watch
