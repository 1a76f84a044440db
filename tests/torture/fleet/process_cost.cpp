#include "process_cost.h"

#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>

namespace oam::torture {

ProcessCost CostOf(pid_t process) {
    const std::string place = "/proc/" + std::to_string(process);
    ProcessCost cost;
    std::string line, word;
    std::getline(std::ifstream(place + "/stat") >> std::ws, line);
    // Behind the name, which may hold anything, user and system time are fields 12 and 13.
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    for (int i = 0; i < 11; ++i) fields >> word;
    double user = 0, system = 0;
    fields >> user >> system;
    cost.cpuSeconds = (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
    std::ifstream memory(place + "/smaps_rollup");
    while (memory >> word)
        if (word == "Private_Clean:" || word == "Private_Dirty:") {
            double kilobytes = 0;
            memory >> kilobytes;
            cost.ownKb += kilobytes;
        }
    return cost;
}

}  // namespace oam::torture
