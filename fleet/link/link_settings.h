// Where the engine's servers are, and who one is to them.
#pragma once

#include <string>
#include <vector>

namespace oam::fleet {

struct LinkSettings {
    std::vector<std::string> servers;  // "tls://hub1.example.net:4222"; any of a cluster
    // PEM files. The certificate's name is the client's, as the server maps it.
    std::string certificate;
    std::string key;
    std::string authorities;  // who signs the servers' certificates
    // Instead of a certificate: a user, and the file with the password.
    std::string user;
    std::string passwordFile;
    // Or a file with a signed user and its key, as the engine's own tools make it.
    std::string credentials;
    std::string domain;  // of the streams, when a leaf server has streams of its own; usually none
    std::string name;    // for the server's list of its connections
};

// Why one must not connect so; empty: one may. Nobody connects without saying who they are, nor
// beyond this machine without TLS.
std::string WhyNotAllowed(const LinkSettings& settings);

// Whether the server is spoken with over TLS alone.
bool WantsTls(const LinkSettings& settings);

// The name that a server gives this client: the certificate's first alternative name (an e-mail
// address, else a DNS name, else a URI), else its subject as "CN=..." - or the user. Empty when it
// cannot be told from here. A Failure when the certificate cannot be read.
std::string NameOfClient(const LinkSettings& settings);

}  // namespace oam::fleet
