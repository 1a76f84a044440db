// Certificates: the gateway's own, whose names are those that browsers may know it by, and a
// client's, whose name the daemon's roles know.
#pragma once

#include <openssl/ssl.h>

#include <optional>
#include <string>
#include <vector>

#include "settings.h"

namespace oam::console {

// Sets the context up: the own certificate, and, with authorities, a question for the client's,
// which is checked when there is one. What is wrong is a std::runtime_error.
void SetUpTls(SSL_CTX& context, const TlsFiles& files);

// DNS names and addresses that the own certificate is for.
std::vector<std::string> NamesOfOwn(const SSL_CTX& context);

// The name in the client's checked certificate, as the daemon would take it from one: the first
// alternative name, else the common name. Nothing when the client showed none.
std::optional<std::string> NameOfClient(const SSL* connection);

}  // namespace oam::console
