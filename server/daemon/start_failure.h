// Why the service does not start, told as far as its start-up log tells it.
#pragma once

#include <chrono>

#include "failure.h"

namespace oam {
class Installation;
}

namespace oam::server {

class Journal;

// What the log has of errors since `before` goes to the journal; the rest is the Failure.
Failure StartFailure(unsigned code, const Installation& place,
                     std::chrono::system_clock::time_point before, Journal& journal);

}  // namespace oam::server
