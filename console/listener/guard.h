// What every request must be before anybody looks at what it asks for.
//
// A page of some other site can make an operator's browser send requests here. It can do so under
// its own name, when that name's address is changed to ours meanwhile: so the Host header must be a
// name of ours. And it can do so as itself: so what changes anything must come from our own page.
#pragma once

#include <httplib.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace oam::console {

class Guard {
  public:
    // The names of this host, and the port that it is reached at.
    Guard(const std::vector<std::string>& names, int port);

    struct Objection {
        int status;
        std::string reason;
        std::string rule;
    };
    std::optional<Objection> Look(const httplib::Request& request) const;

    // The headers of every answer.
    static httplib::Headers Headers(bool isTls);

    static bool ChangesNothing(const std::string& method);

  private:
    bool IsOurs(std::string host) const;

    std::set<std::string> hosts_;
};

}  // namespace oam::console
