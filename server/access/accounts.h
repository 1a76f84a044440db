// The system's databases of users and groups, asked anew each time: an account may come or change
// while the daemon runs. A database that fails knows nobody.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace oam::server {

std::optional<std::string> UserName(uid_t user);
std::optional<uid_t> UserNumber(const std::string& name);
std::optional<gid_t> PrimaryGroup(uid_t user);
std::optional<gid_t> GroupNumber(const std::string& name);

}  // namespace oam::server
