// What all of a fleet under test share: one short directory, the certificates, and the list of who
// may do what, from which the rights of the hub are made as an operator makes them.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "certificates.h"

namespace oam::test {

// PEM files.
struct Papers {
    std::string name;  // in the certificate
    std::string certificate;
    std::string key;
    std::string authorities;
};

class Site {
  public:
    Site();
    ~Site();
    Site(const Site&) = delete;
    Site& operator=(const Site&) = delete;

    std::string Path(const std::string& relative) const { return (root_ / relative).string(); }
    // Makes a directory.
    std::string Directory(const std::string& relative) const;
    void Write(const std::string& relative, const std::string& bytes) const;

    // Files of a certificate with this name, good for servers on the loopback too; made once.
    Papers PapersOf(const std::string& name);
    // The same by somebody whom nobody here trusts.
    Papers ForeignPapersOf(const std::string& name);

    // A line of the list of rights: "host h1.example.net h1", "operator alice.example.net".
    void Allow(const std::string& line) { rights_ += line + '\n'; }
    // rights.conf as oam-fleet-rights makes it from the list.
    std::string Rights() const;

  private:
    Papers Put(const Authority& authority, const std::string& name, const std::string& prefix);

    std::filesystem::path root_;
    const Authority authority_{"the fleet's authority"};
    const Authority foreign_{"a foreign authority"};
    std::map<std::string, Papers> papers_;
    std::string rights_;
};

}  // namespace oam::test
