// Whether the user has asked to stop.
#pragma once

namespace oam::check {

// From now on the usual signals no longer end the process: what was begun is cleaned up first.
void WatchForInterruption();
bool WasInterrupted();

}  // namespace oam::check
