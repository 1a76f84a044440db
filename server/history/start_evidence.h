// What tells whether an object whose data file is missing was deleted, or its file lost.
//
// Each start of the service, by whomever, begins a new start-up log. So while the log is the one
// that the daemon knows, nobody else can have deleted an object; when it is another one, the
// service ran without the daemon, and may have done so. But a service that drops a file because of
// its content keeps it as "*.bak".
#pragma once

#include <chrono>
#include <string>

namespace oam::server {

// Of the start-up log as it lies there; empty when there is none.
std::string StartTrace(const std::string& startupLog);

// Whether the service has dropped this data file for its content since then.
bool WasDroppedSince(const std::string& directory, const std::string& file,
                     std::chrono::system_clock::time_point since);

}  // namespace oam::server
