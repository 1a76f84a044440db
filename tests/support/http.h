// One request over HTTP to this machine.
#pragma once

#include <string>

namespace oam::test {

// Connected to "127.0.0.1:<port>", or -1.
int ConnectTo(const std::string& address);
// Until the other end closes, or half a minute is over.
std::string ReadAll(int socket);
// Status line, headers and body; empty when nobody answers.
std::string HttpRequest(const std::string& address, const std::string& request);
std::string HttpGet(const std::string& address, const std::string& path);
// What comes behind the headers.
std::string BodyOf(const std::string& response);

}  // namespace oam::test
