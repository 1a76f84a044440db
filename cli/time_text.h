// A moment for people and programs: local time with its offset, "2031-01-17T09:30:00+0100".
#pragma once

#include <chrono>
#include <string>

namespace oam {

std::string TimeText(std::chrono::system_clock::time_point time);

}  // namespace oam
