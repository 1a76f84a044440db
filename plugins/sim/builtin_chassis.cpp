#include "builtin_chassis.h"

namespace oam::sim {

std::string_view builtInChassis() {
    return R"(
board: Sim E1 left
product: SIM-E1
bus: 1
slot: 2
serial: SIM000102

board: Sim E1 right
product: SIM-E1
bus: 1
slot: 3
serial: SIM000103

board: Sim IP upper
product: SIM-IP
bus: 2
slot: 4
serial: SIM000204
mac: 02:00:53:02:04:00

board: Sim IP lower
product: SIM-IP
bus: 2
slot: 5
serial: SIM000205
mac: 02:00:53:02:05:00
mac: 02:00:53:02:05:01
)";
}

}  // namespace oam::sim
