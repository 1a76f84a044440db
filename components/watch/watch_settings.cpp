#include "watch_settings.h"

#include "kit/keyword_store.h"

namespace oam::watch {
namespace {

constexpr const char* kFailures = "Threshold.Failures";
constexpr const char* kWindow = "Threshold.WindowSeconds";
constexpr long long kUsualFailures = 3;
constexpr long long kUsualWindow = 600;
constexpr long long kLongestWindow = 7 * 24 * 60 * 60;

}  // namespace

const std::vector<kit::KeywordRule>& settingRules() {
    static const std::vector<kit::KeywordRule> kRules = {
        {.name = "Name", .type = "Object", .isReadOnly = true},
        kit::numberRule(kFailures, kUsualFailures, 0, FailureLimit::kMostFailures,
                        "failed operations of a board that raise an alert; 0: none do"),
        kit::numberRule(kWindow, kUsualWindow, 1, kLongestWindow,
                        "seconds for which a failure counts"),
        {.name = std::string(kReset),
         .value = "No",
         .choices = {"Yes", "No"},
         .description = "Yes forgets all counts"},
    };
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

}  // namespace oam::watch
