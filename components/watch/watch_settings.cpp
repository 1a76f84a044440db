#include "watch_settings.h"

#include "kit/forever.h"
#include "kit/keyword_store.h"

namespace oam::watch {
namespace {

constexpr const char* kFailures = "Threshold.Failures";
constexpr const char* kWindow = "Threshold.WindowSeconds";
constexpr const char* kPeriod = "Period";
constexpr long long kUsualFailures = 3;
constexpr long long kUsualWindow = 600;
constexpr long long kLongestWindow = 7 * 24 * 60 * 60;

}  // namespace

const std::vector<kit::KeywordRule>& settingRules() {
    static const auto& kRules = kit::forever(std::vector<kit::KeywordRule>{
        {.name = "Name", .type = "Object", .isReadOnly = true},
        kit::numberRule(kFailures, kUsualFailures, 0, FailureLimit::kMostFailures,
                        "failed operations of a board that raise an alert; 0: none do"),
        kit::numberRule(kWindow, kUsualWindow, 1, kLongestWindow,
                        "seconds for which a failure counts"),
        {.name = kPeriod,
         .value = "",
         .description = "any text for the counting period; another text begins a new one, from 0"},
    });
    return kRules;
}

oam_result completeSettings(unsigned long handle, std::vector<std::string>* repairs) {
    if (auto failed = kit::installKeywords(handle, settingRules())) return failed;
    return kit::repairKeywords(handle, settingRules(), repairs);
}

FailureLimit readLimit(unsigned long handle) {
    const auto failures =
        kit::readNumber(handle, kFailures, 0, FailureLimit::kMostFailures, kUsualFailures);
    const auto window = kit::readNumber(handle, kWindow, 1, kLongestWindow, kUsualWindow);
    return {.failures = static_cast<unsigned int>(failures),
            .window = std::chrono::seconds(window)};
}

std::string readPeriod(unsigned long handle) {
    return kit::readKeyword(handle, kPeriod).value_or("");
}

}  // namespace oam::watch
