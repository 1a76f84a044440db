// The service's own codes.
#pragma once

#include <cstdint>

namespace oam::server {

// Null for a plug-in's or component's.
const char* OwnCodeName(std::uint32_t code) noexcept;

}  // namespace oam::server
