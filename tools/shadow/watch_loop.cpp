#include "watch_loop.h"

#include <poll.h>

#include "board_output.h"
#include "console.h"
#include "interruption.h"
#include "shadow_reader.h"

namespace oam::shadow {
namespace {

Table look() { return ShadowReader().ReadTable(); }

void tellFirst(const Table& table, Console& console) {
    if (console.IsJson())
        return console.StreamJson({{"event", "watching"},
                                   {"usingVxPlugin", table.isUsingVxPlugin},
                                   {"boards", AsJson(boardRows(table.boards))}});
    console.Stream("watching " + std::to_string(table.boards.size()) + " boards");
}

void tell(const Difference& difference, Console& console) {
    if (console.IsJson()) return console.StreamJson(jsonOf(difference));
    console.Stream(lineOf(difference));
}

// False when the time is over before a signal comes.
bool isInterruptedWithin(std::chrono::milliseconds time, const Interruption& interruption) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (!interruption.IsRequested()) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        pollfd signal{interruption.Descriptor(), POLLIN, 0};
        (void)poll(&signal, 1, static_cast<int>(left.count()));
    }
    return true;
}

}  // namespace

void watchTable(const WatchOptions& options, Console& console) {
    const Interruption interruption;
    Table known = look();
    tellFirst(known, console);
    unsigned told = 0;
    while (!isInterruptedWithin(options.interval, interruption)) {
        Table now = look();
        for (const Difference& difference : differences(known, now)) {
            tell(difference, console);
            if (++told == options.count) return;
        }
        known = std::move(now);
    }
}

}  // namespace oam::shadow
