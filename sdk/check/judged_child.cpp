#include "judged_child.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>

#include "entry_call.h"
#include "finding.h"

namespace oam::check {
namespace {

constexpr int kFatal[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGSYS, SIGTRAP};

void noteDeath(DeathRecord::Kind kind, int signal, const void* address) {
    DeathRecord& death = Journal().death;
    auto none = DeathRecord::Kind::None;
    if (!death.kind.compare_exchange_strong(none, kind)) return;
    const EntryCall* call = EntryCall::Current();
    death.signal = signal;
    death.address = address;
    death.call = call != nullptr ? call->Record() : nullptr;
}

void onFatalSignal(int signal, siginfo_t* info, void*) {
    const bool hasAddress = signal != SIGABRT && info->si_code > 0;
    noteDeath(DeathRecord::Kind::Signal, signal, hasAddress ? info->si_addr : nullptr);
    _exit(EXIT_FAILURE);
}

void onExit() { noteDeath(DeathRecord::Kind::Exit, 0, nullptr); }

// The handler needs a stack of its own, should the module use up the thread's.
void watchSignals() {
    static char stack[1 << 16];
    stack_t alternate{};
    alternate.ss_sp = stack;
    alternate.ss_size = sizeof stack;
    (void)sigaltstack(&alternate, nullptr);
    struct sigaction action {};
    action.sa_sigaction = onFatalSignal;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    for (const int signal : kFatal) (void)sigaction(signal, &action, nullptr);
}

void silence(const TemporaryInstallation& place) {
    const int nothing = open("/dev/null", O_RDONLY);
    const int output = open(place.Path("output").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    (void)dup2(nothing, STDIN_FILENO);
    (void)dup2(output, STDOUT_FILENO);
    (void)dup2(output, STDERR_FILENO);
}

}  // namespace

void BecomeJudgedChild(CallJournal& journal, const TemporaryInstallation& place, int findings) {
    (void)setpgid(0, 0);
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (const int signal : {SIGINT, SIGTERM}) (void)::signal(signal, SIG_DFL);
    const rlimit noCore{0, 0};
    (void)setrlimit(RLIMIT_CORE, &noCore);
    place.Enter();
    silence(place);
    UseJournal(&journal);
    FindingSender::Open(findings);
    watchSignals();
    (void)std::atexit(onExit);
}

}  // namespace oam::check
