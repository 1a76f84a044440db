// For whom the gateway asks the daemon.
#pragma once

#include <string>

namespace oam::console {

struct Identity {
    enum class Kind { kOwn, kUser, kCertificate };
    Kind kind = Kind::kOwn;  // the gateway's own user
    std::string name;        // the local user's, or the name in the certificate
};

}  // namespace oam::console
