// Everything that can be seen of a service, as text: objects with their entries, settings and lists
// of the Supervisor, board table, shadow, registered clients, and the files of the configuration.
#pragma once

#include <string>
#include <string_view>

#include "world.h"

namespace oam::torture {

std::string Digest(World& world);

// What only a later call would notice: objects left open, and the process's open files.
std::string OpenThings();

// True when a second thread can use every part of the service within a generous limit.
bool IsUnlocked();

// Whether every line of a digest is in a later one too, except those that begin so.
bool AddsOnly(const std::string& before, const std::string& found, std::string_view except);

// What differs, for a message: the first lines that only one of two digests has.
std::string Difference(const std::string& expected, const std::string& found);

}  // namespace oam::torture
