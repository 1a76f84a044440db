#include "listener/certificates.h"

#include <arpa/inet.h>
#include <openssl/err.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>

namespace oam::console {
namespace {

[[noreturn]] void fail(const std::string& what) {
    char reason[256] = "";
    if (const auto error = ERR_peek_last_error()) ERR_error_string_n(error, reason, sizeof reason);
    throw std::runtime_error(what + (reason[0] ? std::string(": ") + reason : ""));
}

// Empty for a name with a NUL byte, which would read as another one.
std::string textOf(const ASN1_STRING* string) {
    unsigned char* utf8 = nullptr;
    const int size = string ? ASN1_STRING_to_UTF8(&utf8, string) : -1;
    if (size < 0) return {};
    std::string text(reinterpret_cast<const char*>(utf8), static_cast<std::size_t>(size));
    OPENSSL_free(utf8);
    return text.find('\0') == text.npos ? text : "";
}

std::string addressOf(const ASN1_STRING* bytes) {
    const int size = ASN1_STRING_length(bytes);
    const int family = size == 4 ? AF_INET : size == 16 ? AF_INET6 : AF_UNSPEC;
    char text[INET6_ADDRSTRLEN];
    if (family == AF_UNSPEC ||
        inet_ntop(family, ASN1_STRING_get0_data(bytes), text, sizeof text) == nullptr)
        return {};
    return text;
}

std::string nameOf(const GENERAL_NAME& name) {
    switch (name.type) {
        case GEN_DNS:
            return textOf(name.d.dNSName);
        case GEN_URI:
            return textOf(name.d.uniformResourceIdentifier);
        case GEN_EMAIL:
            return textOf(name.d.rfc822Name);
        case GEN_IPADD:
            return addressOf(name.d.iPAddress);
        default:
            return {};
    }
}

std::vector<std::string> alternativeNames(const X509* certificate) {
    std::vector<std::string> names;
    const auto free = [](GENERAL_NAMES* list) { GENERAL_NAMES_free(list); };
    const std::unique_ptr<GENERAL_NAMES, decltype(free)> list(
        static_cast<GENERAL_NAMES*>(
            X509_get_ext_d2i(certificate, NID_subject_alt_name, nullptr, nullptr)),
        free);
    for (int i = 0; list && i < sk_GENERAL_NAME_num(list.get()); ++i)
        if (std::string name = nameOf(*sk_GENERAL_NAME_value(list.get(), i)); !name.empty())
            names.push_back(std::move(name));
    return names;
}

std::string commonName(const X509* certificate) {
    X509_NAME* const subject = X509_get_subject_name(certificate);
    const int at = X509_NAME_get_index_by_NID(subject, NID_commonName, -1);
    if (at < 0) return {};
    return textOf(X509_NAME_ENTRY_get_data(X509_NAME_get_entry(subject, at)));
}

}  // namespace

void SetUpTls(SSL_CTX& context, const TlsFiles& files) {
    ERR_clear_error();
    SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION);
    SSL_CTX_set_options(&context, SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION);
    // A session that is taken up again would not be asked for its certificate, which may not be
    // good any more.
    SSL_CTX_set_options(&context, SSL_OP_NO_TICKET);
    SSL_CTX_set_session_cache_mode(&context, SSL_SESS_CACHE_OFF);
    SSL_CTX_set_num_tickets(&context, 0);
    if (SSL_CTX_use_certificate_chain_file(&context, files.certificate.c_str()) != 1)
        fail("the certificate " + files.certificate + " cannot be used");
    if (SSL_CTX_use_PrivateKey_file(&context, files.key.c_str(), SSL_FILETYPE_PEM) != 1 ||
        SSL_CTX_check_private_key(&context) != 1)
        fail("the key " + files.key + " cannot be used");
    if (files.clientAuthorities.empty()) return;
    auto* const authorities = SSL_load_client_CA_file(files.clientAuthorities.c_str());
    if (authorities == nullptr ||
        SSL_CTX_load_verify_locations(&context, files.clientAuthorities.c_str(), nullptr) != 1)
        fail("the authorities " + files.clientAuthorities + " cannot be used");
    SSL_CTX_set_client_CA_list(&context, authorities);
    constexpr unsigned char kSessionContext[] = "oam-console";
    SSL_CTX_set_session_id_context(&context, kSessionContext, sizeof kSessionContext - 1);
    SSL_CTX_set_verify(&context, SSL_VERIFY_PEER, nullptr);
}

std::vector<std::string> NamesOfOwn(const SSL_CTX& context) {
    const X509* const own = SSL_CTX_get0_certificate(&context);
    return own ? alternativeNames(own) : std::vector<std::string>();
}

std::optional<std::string> NameOfClient(const SSL* connection) {
    if (connection == nullptr) return std::nullopt;
    const auto free = [](X509* certificate) { X509_free(certificate); };
    const std::unique_ptr<X509, decltype(free)> shown(SSL_get1_peer_certificate(connection), free);
    if (!shown || SSL_get_verify_result(connection) != X509_V_OK) return std::nullopt;
    const auto names = alternativeNames(shown.get());
    std::string name = names.empty() ? commonName(shown.get()) : names.front();
    if (name.empty()) return std::nullopt;
    return name;
}

}  // namespace oam::console
