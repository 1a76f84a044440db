#include "certificates.h"

#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <atomic>
#include <stdexcept>

namespace oam::test {
namespace {

using Key = std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY*)>;
using Paper = std::unique_ptr<X509, void (*)(X509*)>;

constexpr long kHour = 3600;

void require(bool isGood) {
    if (!isGood) throw std::runtime_error("a certificate cannot be made");
}

template <class Write>
std::string textOf(Write write) {
    const std::unique_ptr<BIO, int (*)(BIO*)> memory(BIO_new(BIO_s_mem()), &BIO_free);
    require(memory && write(memory.get()) == 1);
    char* bytes = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &bytes);
    return {bytes, static_cast<std::size_t>(size)};
}

void extend(X509* paper, X509* issuer, int kind, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, paper, nullptr, nullptr, 0);
    X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str());
    require(extension != nullptr && X509_add_ext(paper, extension, -1) == 1);
    X509_EXTENSION_free(extension);
}

// Not signed yet.
Paper blank(const std::string& name, EVP_PKEY* key, long seconds) {
    static std::atomic<long> serial{1};
    Paper paper(X509_new(), &X509_free);
    require(paper != nullptr);
    X509* const x509 = paper.get();
    X509_set_version(x509, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(x509), serial++);
    X509_gmtime_adj(X509_getm_notBefore(x509), -kHour);
    X509_gmtime_adj(X509_getm_notAfter(x509), seconds - kHour);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(x509), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    require(X509_set_pubkey(x509, key) == 1);
    return paper;
}

std::string pemOf(X509* paper) {
    return textOf([&](BIO* out) { return PEM_write_bio_X509(out, paper); });
}

}  // namespace

struct Authority::Secret {
    Key key{EVP_EC_gen("P-256"), &EVP_PKEY_free};
    Paper paper{nullptr, &X509_free};
};

Authority::Authority(const std::string& name) : secret_(std::make_unique<Secret>()) {
    secret_->paper = blank(name, secret_->key.get(), 24 * kHour);
    X509* const paper = secret_->paper.get();
    X509_set_issuer_name(paper, X509_get_subject_name(paper));
    extend(paper, paper, NID_basic_constraints, "critical,CA:TRUE");
    extend(paper, paper, NID_key_usage, "critical,keyCertSign");
    require(X509_sign(paper, secret_->key.get(), EVP_sha256()) > 0);
}

Authority::~Authority() = default;

std::string Authority::Certificate() const { return pemOf(secret_->paper.get()); }

Identity Authority::Issue(const std::string& name, long seconds) const {
    return IssueAs(name, name == "localhost" ? "DNS:localhost,IP:127.0.0.1" : "DNS:" + name,
                   seconds);
}

Identity Authority::IssueAs(const std::string& name, const std::string& alternatives,
                            long seconds) const {
    const Key key(EVP_EC_gen("P-256"), &EVP_PKEY_free);
    require(key != nullptr);
    const Paper paper = blank(name, key.get(), seconds);
    X509_set_issuer_name(paper.get(), X509_get_subject_name(secret_->paper.get()));
    if (!alternatives.empty())
        extend(paper.get(), secret_->paper.get(), NID_subject_alt_name, alternatives);
    require(X509_sign(paper.get(), secret_->key.get(), EVP_sha256()) > 0);
    return {pemOf(paper.get()), textOf([&](BIO* out) {
                return PEM_write_bio_PrivateKey(out, key.get(), nullptr, nullptr, 0, nullptr,
                                                nullptr);
            })};
}

}  // namespace oam::test
