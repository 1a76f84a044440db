// Times as JSON carries them: "2026-03-01T12:00:00.000Z".
#pragma once

#include <cstdint>
#include <string>

namespace oam::console {

std::string TimeText(std::int64_t seconds, int nanos);

}  // namespace oam::console
