// Watching the table: one look after another, and what has changed in between.
//
// Every look attaches anew, so that a segment that was removed and made again is seen. A change
// that is undone between two looks is not.
#pragma once

#include <chrono>

namespace oam {
class Console;
}

namespace oam::shadow {

struct WatchOptions {
    std::chrono::milliseconds interval{0};
    unsigned count = 0;  // ends after so many differences; 0: goes on
};

// Begins by telling the first state, so that a reader of the output knows what the differences
// refer to. Ends at SIGINT and SIGTERM too.
void watchTable(const WatchOptions& options, Console& console);

}  // namespace oam::shadow
