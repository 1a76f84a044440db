// A forked child whose system calls are looked at one by one, before each is made.
//
// What a process does to its files is known exactly only at this border: the C library's own calls
// are seen too, threads included, and any of them can be made to fail, be cut short, or be the last.
// x86-64 Linux.
#pragma once

#include <sys/types.h>

#include <array>
#include <functional>

namespace oam::torture {

struct SystemCall {
    long number;
    std::array<unsigned long, 6> arguments;
    pid_t thread;
};

struct Decision {
    enum class Kind {
        kGo,         // made as it is
        kKill,       // the process ends before the call
        kFail,       // not made; answers the error
        kFailAfter,  // made, and answers the error: a close whose write-back failed
        kShorten,    // a write of half its bytes
    };
    Kind kind = Kind::kGo;
    int error = 0;
};

// The second one is told each call's result, when it is not null.
using Decide = std::function<Decision(const SystemCall&)>;
using Observe = std::function<void(const SystemCall&, long result)>;

// Called by the child: its calls are looked at from here, and no longer from there. Without a tracer
// they do nothing.
void TraceFromHere();
void TraceUntilHere();

// Runs the body in a child until it ends, and answers its wait status. The body's value is the
// child's exit status.
int RunTraced(const std::function<int()>& body, const Decide& decide,
              const Observe& observe = nullptr);
// The same without a look at its calls.
int RunChild(const std::function<int()>& body);

}  // namespace oam::torture
