#include "listener/live_certificates.h"

#include <stdexcept>
#include <utility>

namespace oam::console {

LiveCertificates::LiveCertificates(const TlsFiles& files) : files_(files), current_(Read(files)) {}

LiveCertificates::Context LiveCertificates::Read(const TlsFiles& files) {
    Context context(SSL_CTX_new(TLS_server_method()));
    if (!context) throw std::runtime_error("there is no memory for the certificates");
    SetUpTls(*context, files);
    return context;
}

void LiveCertificates::Serve(SSL_CTX& server) {
    SetUpTls(server, files_);
    SSL_CTX_set_client_hello_cb(&server, &Choose, this);
}

// The connection takes a share of the context.
int LiveCertificates::Choose(SSL* connection, int* alert, void* certificates) {
    auto& self = *static_cast<LiveCertificates*>(certificates);
    const std::lock_guard hold(self.lock_);
    if (SSL_set_SSL_CTX(connection, self.current_.get()) != nullptr)
        return SSL_CLIENT_HELLO_SUCCESS;
    *alert = SSL_AD_INTERNAL_ERROR;
    return SSL_CLIENT_HELLO_ERROR;
}

void LiveCertificates::Reload() {
    Context read = Read(files_);
    const std::lock_guard hold(lock_);
    std::swap(current_, read);
}

std::vector<std::string> LiveCertificates::Names() const {
    const std::lock_guard hold(lock_);
    return NamesOfOwn(*current_);
}

}  // namespace oam::console
