// Which hosts are meant: patterns as a shell has them for files ("rack-7-*"), or names; several
// with commas between them. No pattern means all.
#pragma once

#include <string>
#include <vector>

namespace oam::fleet {

class HostPattern {
  public:
    explicit HostPattern(const std::vector<std::string>& texts);

    bool Matches(const std::string& host) const;
    // The one host that is meant; empty: it may be several.
    std::string One() const;
    // Names without a wildcard: they are meant whether or not anybody knows them.
    std::vector<std::string> Names() const;

  private:
    std::vector<std::string> patterns_;
};

}  // namespace oam::fleet
