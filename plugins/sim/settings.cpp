#include "settings.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>

#include "keyword_rule.h"
#include "kit/db_access.h"
#include "text_scan.h"
#include "value_check.h"

namespace oam::sim {
namespace {

using namespace std::chrono_literals;

constexpr std::array kFirstProducts = {"SIM-E1", "SIM-IP"};
constexpr long long kMostProducts = 64;

KeywordRule timeRule(const char* name, std::chrono::milliseconds value, const char* description) {
    return numberRule(name, value.count(), 0, kLongestTime.count(), description);
}

KeywordRule resultRule(const char* name, const char* description) {
    return {.name = name,
            .value = "0",
            .type = "Integer",
            .min = "0",
            .max = "FFFFFFFF",
            .base = "16",
            .description = description};
}

std::vector<KeywordRule> settingRules() {
    return {
        {.name = "Name",
         .type = "Object",
         .isReadOnly = true,
         .description = "name of managed object"},
        {.name = "Chassis.File",
         .value = "sim.chassis",
         .type = "FileName",
         .description = "chassis file in the configuration directory"},
        numberRule("Products.Count", kFirstProducts.size(), 0, kMostProducts,
                   "number of products, served from the next start on"),
        timeRule("Timing.StartMs", 300ms, "milliseconds that a start takes"),
        timeRule("Timing.StopMs", 100ms, "milliseconds that a stop takes"),
        timeRule("Timing.TestMs", 500ms, "milliseconds that a test takes"),
        resultRule("Failure.Start", "result of a start without a script, hexadecimal"),
        resultRule("Failure.Stop", "result of a stop without a script, hexadecimal"),
        resultRule("Failure.Test", "result of a test without a script, hexadecimal"),
        numberRule("Sensor.Temperature.Warning", 700, kCoolest, kHottest,
                   "a new board's warning temperature in tenths of a degree"),
        numberRule("Sensor.Temperature.Alert", 850, kCoolest, kHottest,
                   "a new board's alert temperature in tenths of a degree"),
        numberRule("Sensor.Fan.Warning", 1500, 0, kFastestFan,
                   "a new board's lowest fan speed in revolutions per minute"),
    };
}

KeywordRule productRule(long long index) {
    return {.name = "Products[" + std::to_string(index) + "]",
            .type = "Object",
            .isDistinct = true,
            .description = "product, served from the next start on"};
}

// Fewer products than numbers: one of them is free.
std::string freshProduct(unsigned long handle, const KeywordRule& rule, std::size_t index) {
    std::string product = index < kFirstProducts.size() ? kFirstProducts[index] : "";
    for (auto number = index; !acceptedValue(handle, rule.name, product); ++number) {
        product = "SIM-" + std::to_string(number);
    }
    return product;
}

long long readNumber(unsigned long handle, const char* keyword, int base = 10) {
    const auto stored = kit::readKeyword(handle, keyword).value_or("");
    return kit::boundedNumber(stored, std::numeric_limits<int>::min(),
                              std::numeric_limits<unsigned int>::max(), base)
        .value_or(0);
}

bool isGood(unsigned long handle, const std::string& keyword) {
    const auto stored = kit::readKeyword(handle, keyword);
    return stored && acceptedValue(handle, keyword, *stored);
}

oam_result replaceKeyword(unsigned long handle, const std::string& keyword,
                          const std::string& value, std::vector<std::string>* repairs) {
    if (const auto stored = kit::readKeyword(handle, keyword)) {
        repairs->push_back(kit::quoted(keyword) + " was " + kit::quoted(*stored) + " and is now " +
                           kit::quoted(value) + ".");
    }
    return _oamDbSetKeyword(handle, keyword.c_str(), value.c_str());
}

oam_result completeProducts(unsigned long handle, std::vector<std::string>* repairs) {
    const auto count = readNumber(handle, "Products.Count");
    for (long long i = 0; i < count; ++i) {
        const auto rule = productRule(i);
        if (auto failed = installKeyword(handle, rule)) return failed;
        if (isGood(handle, rule.name)) continue;
        const auto product = freshProduct(handle, rule, static_cast<std::size_t>(i));
        if (auto failed = replaceKeyword(handle, rule.name, product, repairs)) return failed;
    }
    return OAM_SUCCESS;
}

}  // namespace

bool Settings::Serves(std::string_view product) const {
    return std::any_of(products.begin(), products.end(),
                       [&](const std::string& served) { return kit::sameText(served, product); });
}

oam_result completeSettings(unsigned long handle, const std::string& objectName,
                            std::vector<std::string>* repairs) {
    if (!kit::sameText(kit::readKeyword(handle, "Name").value_or(""), objectName)) {
        if (auto failed = replaceKeyword(handle, "Name", objectName, repairs)) return failed;
    }
    const auto rules = settingRules();
    if (auto failed = installKeywords(handle, rules)) return failed;
    for (const auto& rule : rules) {
        if (!rule.value || isGood(handle, rule.name)) continue;
        if (auto failed = replaceKeyword(handle, rule.name, *rule.value, repairs)) return failed;
    }
    return completeProducts(handle, repairs);
}

Settings readSettings(unsigned long handle) {
    const auto number = [&](const char* keyword) {
        return static_cast<int>(readNumber(handle, keyword));
    };
    const auto operation = [&](const char* time, const char* failure) {
        return OperationDefault{.time = std::chrono::milliseconds(readNumber(handle, time)),
                                .result = static_cast<oam_result>(readNumber(handle, failure, 16))};
    };
    Settings settings;
    settings.chassisFile = kit::readKeyword(handle, "Chassis.File").value_or("");
    const auto count = readNumber(handle, "Products.Count");
    for (long long i = 0; i < count; ++i) {
        settings.products.push_back(kit::readKeyword(handle, productRule(i).name).value_or(""));
    }
    settings.operations[Operation::Start] = operation("Timing.StartMs", "Failure.Start");
    settings.operations[Operation::Stop] = operation("Timing.StopMs", "Failure.Stop");
    settings.operations[Operation::Test] = operation("Timing.TestMs", "Failure.Test");
    settings.thresholds = {.temperatureWarning = number("Sensor.Temperature.Warning"),
                           .temperatureAlert = number("Sensor.Temperature.Alert"),
                           .fanWarning = number("Sensor.Fan.Warning")};
    return settings;
}

}  // namespace oam::sim
