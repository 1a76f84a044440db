// Certificate files that may change while the gateway runs: connections that begin after a reload
// show and ask for what the files hold then. Those that are open stay as they are.
#pragma once

#include <openssl/ssl.h>

#include <memory>
#include <mutex>

#include "listener/certificates.h"

namespace oam::console {

class LiveCertificates {
  public:
    // What is wrong with the files is a std::runtime_error, here and in Reload.
    explicit LiveCertificates(const TlsFiles& files);

    // Makes the server's context ask for the current one at the begin of each connection. It must
    // not outlive this.
    void Serve(SSL_CTX& server);

    // Any thread. When the files cannot be used, those that were read before stay in use.
    void Reload();

    // The names in the current own certificate.
    std::vector<std::string> Names() const;

  private:
    struct Free {
        void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
    };
    using Context = std::unique_ptr<SSL_CTX, Free>;

    static Context Read(const TlsFiles& files);
    static int Choose(SSL* connection, int* alert, void* certificates);

    const TlsFiles files_;
    mutable std::mutex lock_;
    Context current_;
};

}  // namespace oam::console
