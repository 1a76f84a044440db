// What the services stand on.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "alerts/alert_ring.h"
#include "library/code_names.h"
#include "library/service_host.h"
#include "operations/operation_book.h"
#include "transport/calls.h"

namespace oam::server {

class ConfigurationKeeper;
class ServiceControl;

struct Core {
    Calls& calls;
    Lanes& lanes;
    ServiceHost& host;
    AlertRing& ring;
    CodeNames& names;
    OperationBook& operations;
    ConfigurationKeeper& configuration;
    ServiceControl& control;
    Journal& journal;
    std::string directory;     // of the installation
    std::string databasePath;  // of the book
};

}  // namespace oam::server
