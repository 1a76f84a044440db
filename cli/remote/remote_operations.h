// Requests to the daemon, and their outcomes from one stream.
#pragma once

#include "remote/stubs.h"
#include "service.h"

namespace oam {

std::unique_ptr<Operations> NewRemoteOperations(Stubs& stubs, OperationKind kind,
                                                const Interruption& interruption);

}  // namespace oam
