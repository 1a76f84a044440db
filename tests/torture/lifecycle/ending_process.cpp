// A process that ends in the middle of everything.
//
//   ending_process KIND MICROSECONDS SEED
//
// The service runs and is busy for so long; then the process ends as the kind says:
//   return     main returns
//   exit       main calls exit
//   _exit      main calls _exit
//   quick_exit main calls quick_exit
//   receiver   a receiver of an alert calls exit, while main waits
//   stopped    the service is stopped, its workers are still there, and main returns
//
// What runs at the end of the process takes its time: before the handlers of exit, which end what
// the plug-ins have made since, and behind those that end everything else.
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string_view>
#include <thread>

#include "busy_service.h"
#include "oam/entry.h"
#include "spawned.h"
#include "support/short_waits.h"

namespace {

using namespace std::chrono_literals;

void takeTime() { std::this_thread::sleep_for(10ms); }

__attribute__((destructor)) void takeTimeAtTheVeryEnd() { takeTime(); }

int end(std::string_view kind) {
    if (kind == "exit") exit(0);
    if (kind == "_exit") _exit(0);
    if (kind == "quick_exit") quick_exit(0);
    if (kind == "receiver") {
        oam::torture::AtNextOutcome([] { exit(0); });
        for (;;) std::this_thread::sleep_for(1h);
    }
    if (kind == "stopped") {
        oam::torture::StopRequests();
        if (_oamExit() != OAM_SUCCESS) return 3;
    }
    return 0;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 4) return 2;
    std::atexit(&takeTime);
    oam::torture::UseShortWaits();
    oam::torture::TellPlacesWhenAsked();
    if (!oam::torture::StartBusyService(static_cast<unsigned>(std::atoi(arguments[3])))) return 1;
    std::this_thread::sleep_for(std::chrono::microseconds(std::atoi(arguments[2])));
    return end(arguments[1]);
}
