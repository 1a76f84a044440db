// Certificates for tests of mutual TLS, made on the spot.
#pragma once

#include <memory>
#include <string>

namespace oam::test {

// PEM.
struct Identity {
    std::string certificate;
    std::string key;
};

class Authority {
  public:
    explicit Authority(const std::string& name);
    ~Authority();

    // What those who trust it have.
    std::string Certificate() const;

    // For a host on the loopback or a client of this name; good for so many seconds from an hour
    // ago on (3600: just expired).
    Identity Issue(const std::string& name, long seconds = 86400) const;
    // With alternative names of its own, as "DNS:host.test,IP:127.0.0.1", or none.
    Identity IssueAs(const std::string& name, const std::string& alternatives,
                     long seconds = 86400) const;

  private:
    struct Secret;
    std::unique_ptr<Secret> secret_;
};

}  // namespace oam::test
