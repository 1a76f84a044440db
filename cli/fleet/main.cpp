// oam-fleet, which `oam fleet` becomes.
#include "cli/fleet/fleet_line.h"
#include "completion.h"

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    oam::fleet::FleetLine line;
    if (words.size() == 2 && words.front() == "complete") {
        oam::PrintFleetCompletion(line.App(), words.back());
        return oam::kDone;
    }
    return line.Execute(words);
}
