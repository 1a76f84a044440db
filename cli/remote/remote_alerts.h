// Alerts of the daemon, from now on or from behind a number.
#pragma once

#include <cstdint>
#include <optional>

#include "remote/stubs.h"
#include "service.h"

namespace oam {

std::unique_ptr<AlertStream> NewRemoteAlerts(Stubs& stubs, std::optional<std::uint64_t> after,
                                             const Interruption& interruption);

}  // namespace oam
