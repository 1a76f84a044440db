#include "time_text.h"

#include <ctime>

namespace oam {

std::string TimeText(std::chrono::system_clock::time_point time) {
    const time_t seconds = std::chrono::system_clock::to_time_t(time);
    tm local{};
    char text[32];
    localtime_r(&seconds, &local);
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S%z", &local);
    return text;
}

}  // namespace oam
