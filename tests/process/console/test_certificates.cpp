#include "test_certificates.h"

#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <atomic>
#include <cstdio>

namespace oam::test {
namespace {

std::shared_ptr<EVP_PKEY> newKey() { return {EVP_EC_gen("P-256"), EVP_PKEY_free}; }

void addExtension(X509* certificate, X509* issuer, int id, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, &context, id, value.c_str());
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

std::shared_ptr<X509> newCertificate(const std::string& name, EVP_PKEY* key) {
    static std::atomic<long> serial{1};
    std::shared_ptr<X509> made(X509_new(), X509_free);
    X509_set_version(made.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(made.get()), serial++);
    X509_gmtime_adj(X509_getm_notBefore(made.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(made.get()), 24 * 3600);
    X509_set_pubkey(made.get(), key);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(made.get()), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    return made;
}

template <class Write>
void writeTo(const std::string& path, Write write) {
    std::FILE* const file = std::fopen(path.c_str(), "w");
    if (file == nullptr) throw std::runtime_error("cannot write " + path);
    write(file);
    std::fclose(file);
}

}  // namespace

CertificateAuthority::CertificateAuthority(const std::string& name)
    : key_(newKey()), certificate_(newCertificate(name, key_.get())) {
    X509_set_issuer_name(certificate_.get(), X509_get_subject_name(certificate_.get()));
    addExtension(certificate_.get(), certificate_.get(), NID_basic_constraints, "critical,CA:TRUE");
    X509_sign(certificate_.get(), key_.get(), EVP_sha256());
}

void CertificateAuthority::WriteTo(const std::string& path) const {
    writeTo(path, [&](std::FILE* file) { PEM_write_X509(file, certificate_.get()); });
}

void CertificateAuthority::Issue(const std::string& name, const std::string& alternative,
                                 const std::string& certificateFile,
                                 const std::string& keyFile) const {
    const auto key = newKey();
    const auto made = newCertificate(name, key.get());
    X509_set_issuer_name(made.get(), X509_get_subject_name(certificate_.get()));
    if (!alternative.empty())
        addExtension(made.get(), certificate_.get(), NID_subject_alt_name, alternative);
    X509_sign(made.get(), key_.get(), EVP_sha256());
    writeTo(certificateFile, [&](std::FILE* file) { PEM_write_X509(file, made.get()); });
    writeTo(keyFile, [&](std::FILE* file) {
        PEM_write_PrivateKey(file, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    });
}

}  // namespace oam::test
