#include "traced_child.h"

#include <errno.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace oam::torture {
namespace {

// A call that does nothing and that nobody else makes, with an argument that tells what is meant.
constexpr long kMarkerCall = SYS_membarrier;
constexpr unsigned long kMarker = 0x6F616D;
constexpr int kSystemCallStop = SIGTRAP | 0x80;

bool traceNext = false;  // in the child, between fork and TraceFromHere

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::abort();
}

pid_t forkChild(const std::function<int()>& body, bool traced) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) fail("fork");
    if (child == 0) {
        traceNext = traced;
        _exit(body());
    }
    return child;
}

class Tracer {
  public:
    Tracer(pid_t child, const Decide& decide, const Observe& observe)
        : child_(child), decide_(decide), observe_(observe) {}

    int Run() {
        int status = 0;
        if (waitpid(child_, &status, 0) != child_) fail("waitpid");
        if (!WIFSTOPPED(status)) return status;
        constexpr long kOptions =
            PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_TRACEFORK | PTRACE_O_EXITKILL;
        if (ptrace(PTRACE_SETOPTIONS, child_, 0, kOptions) != 0) fail("PTRACE_SETOPTIONS");
        Resume(child_, 0);
        for (;;) {
            const pid_t thread = waitpid(-1, &status, __WALL);
            if (thread < 0 && errno == EINTR) continue;
            if (thread < 0) fail("waitpid");
            if (!WIFSTOPPED(status)) {
                if (thread == child_) return status;
                continue;
            }
            Stopped(thread, status);
        }
    }

  private:
    void Stopped(pid_t thread, int status) {
        const int signal = WSTOPSIG(status);
        if (signal == kSystemCallStop) {
            AtBorder(thread);
        } else if (signal == SIGTRAP || signal == SIGSTOP) {
            Resume(thread, 0);  // a new thread, or its own report
        } else {
            Resume(thread, signal);
        }
    }

    void AtBorder(pid_t thread) {
        struct __ptrace_syscall_info info = {};
        if (ptrace(PTRACE_GET_SYSCALL_INFO, thread, sizeof info, &info) <= 0)
            return Resume(thread, 0);  // it has been killed
        if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
            SystemCall call = {.number = static_cast<long>(info.entry.nr), .arguments = {},
                               .thread = thread};
            for (std::size_t i = 0; i < call.arguments.size(); ++i)
                call.arguments[i] = info.entry.args[i];
            Entering(call);
        } else if (info.op == PTRACE_SYSCALL_INFO_EXIT) {
            Leaving(thread, info.exit.rval);
        }
        Resume(thread, 0);
    }

    void Entering(const SystemCall& call) {
        if (call.number == kMarkerCall && call.arguments[0] == kMarker) isWatching_ = false;
        if (!isWatching_ || IsIntoPipe(call)) return;
        const Decision decision = decide_(call);
        Entered entered = {call, {}};
        switch (decision.kind) {
            case Decision::Kind::kGo:
                break;
            case Decision::Kind::kKill:
                kill(child_, SIGKILL);
                isWatching_ = false;
                return;
            case Decision::Kind::kFail:
                Poke(call.thread, offsetof(user_regs_struct, orig_rax), ~0UL);
                entered.error = decision.error;
                break;
            case Decision::Kind::kFailAfter:
                entered.error = decision.error;
                break;
            case Decision::Kind::kShorten:
                Poke(call.thread, offsetof(user_regs_struct, rdx), call.arguments[2] / 2);
                break;
        }
        entered_[call.thread] = entered;
    }

    // We have no pipes; a sanitizer asks through one of its own whether memory is there.
    static bool IsIntoPipe(const SystemCall& call) {
        if (call.number != SYS_write) return false;
        const std::string link = "/proc/" + std::to_string(call.thread) + "/fd/" +
                                 std::to_string(call.arguments[0]);
        char target[8] = "";
        return readlink(link.c_str(), target, sizeof target - 1) > 0 &&
               std::string_view(target).starts_with("pipe:");
    }

    void Leaving(pid_t thread, long result) {
        const auto found = entered_.find(thread);
        if (found == entered_.end()) return;
        const Entered entered = found->second;
        entered_.erase(found);
        if (entered.error) {
            result = -*entered.error;
            Poke(thread, offsetof(user_regs_struct, rax), static_cast<unsigned long>(result));
        }
        if (observe_) observe_(entered.call, result);
    }

    static void Poke(pid_t thread, std::size_t offset, unsigned long value) {
        if (ptrace(PTRACE_POKEUSER, thread, offset, value) != 0) fail("PTRACE_POKEUSER");
    }

    static void Resume(pid_t thread, int signal) {
        // ESRCH: it has been killed.
        if (ptrace(PTRACE_SYSCALL, thread, 0, signal) != 0 && errno != ESRCH) fail("PTRACE_SYSCALL");
    }

    struct Entered {
        SystemCall call;
        std::optional<int> error;
    };

    const pid_t child_;
    const Decide& decide_;
    const Observe& observe_;
    bool isWatching_ = true;
    std::map<pid_t, Entered> entered_;
};

}  // namespace

void TraceFromHere() {
    if (!traceNext) return;
    traceNext = false;
    if (ptrace(PTRACE_TRACEME, 0, 0, 0) != 0) fail("PTRACE_TRACEME");
    raise(SIGSTOP);
}

void TraceUntilHere() { (void)syscall(kMarkerCall, kMarker, 0, 0); }

int RunTraced(const std::function<int()>& body, const Decide& decide, const Observe& observe) {
    return Tracer(forkChild(body, true), decide, observe).Run();
}

int RunChild(const std::function<int()>& body) {
    const pid_t child = forkChild(body, false);
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR) fail("waitpid");
    return status;
}

}  // namespace oam::torture
