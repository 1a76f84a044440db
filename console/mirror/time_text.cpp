#include "mirror/time_text.h"

#include <cstdio>
#include <ctime>

namespace oam::console {

std::string TimeText(std::int64_t seconds, int nanos) {
    constexpr int kNanosInMilli = 1000000;
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    if (gmtime_r(&time, &parts) == nullptr) return {};
    char date[64];
    const auto length = std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &parts);
    char fraction[16];
    std::snprintf(fraction, sizeof fraction, ".%03dZ", nanos / kNanosInMilli % 1000);
    return std::string(date, length) + fraction;
}

}  // namespace oam::console
