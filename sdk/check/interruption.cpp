#include "interruption.h"

#include <signal.h>

#include <initializer_list>

namespace oam::check {
namespace {

volatile sig_atomic_t isInterrupted = 0;

void onSignal(int) { isInterrupted = 1; }

}  // namespace

void WatchForInterruption() {
    struct sigaction action {};
    action.sa_handler = onSignal;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) (void)sigaction(signal, &action, nullptr);
}

bool WasInterrupted() { return isInterrupted != 0; }

}  // namespace oam::check
