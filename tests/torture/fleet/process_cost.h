// What a running process takes, as the kernel counts it.
#pragma once

#include <sys/types.h>

namespace oam::torture {

struct ProcessCost {
    double cpuSeconds = 0;  // since its start
    double ownKb = 0;       // memory that it shares with nobody
};

ProcessCost CostOf(pid_t process);

}  // namespace oam::torture
