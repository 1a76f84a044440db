// Whether the files for mutual TLS are such that a handshake can succeed.
#pragma once

namespace oam::server {

struct TlsFiles;

// std::runtime_error with the file and the reason: not readable, no certificate or key in it, a key
// that is another certificate's. The transport would only refuse every handshake.
void CheckTlsFiles(const TlsFiles& files);

}  // namespace oam::server
