#include "transport/tls_check.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "transport/transport.h"

namespace oam::server {
namespace {

void require(int isGood, const std::string& what) {
    if (isGood == 1) return;
    const char* const reason = ERR_reason_error_string(ERR_peek_last_error());
    const std::string text = what + (reason ? std::string(": ") + reason : "");
    ERR_clear_error();
    throw std::runtime_error(text);
}

}  // namespace

void CheckTlsFiles(const TlsFiles& files) {
    ERR_clear_error();
    const std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)> context(SSL_CTX_new(TLS_server_method()),
                                                               &SSL_CTX_free);
    require(context != nullptr, "TLS cannot be used");
    SSL_CTX* const tls = context.get();
    require(SSL_CTX_use_certificate_chain_file(tls, files.certificate.c_str()),
            "no certificate in " + files.certificate);
    require(SSL_CTX_use_PrivateKey_file(tls, files.key.c_str(), SSL_FILETYPE_PEM),
            "no key for " + files.certificate + " in " + files.key);
    require(SSL_CTX_check_private_key(tls), files.key + " is not the key of " + files.certificate);
    require(SSL_CTX_load_verify_locations(tls, files.clientAuthorities.c_str(), nullptr),
            "no certificate in " + files.clientAuthorities);
}

}  // namespace oam::server
