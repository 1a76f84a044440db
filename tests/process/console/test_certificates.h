// Certificates of a moment: an authority, and what it signs, as PEM files.
#pragma once

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>
#include <string>

namespace oam::test {

class CertificateAuthority {
  public:
    explicit CertificateAuthority(const std::string& name);

    // The authority's own certificate.
    void WriteTo(const std::string& file) const;
    // A certificate of this common name and its key; `alternative` as "DNS:host.test", or empty.
    void Issue(const std::string& name, const std::string& alternative,
               const std::string& certificateFile, const std::string& keyFile) const;

  private:
    std::shared_ptr<EVP_PKEY> key_;
    std::shared_ptr<X509> certificate_;
};

}  // namespace oam::test
