// The name in a certificate, as a server that maps certificates to users looks for it.
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <memory>

#include "failure.h"
#include "file_content.h"
#include "fleet/link/link_settings.h"

namespace oam::fleet {
namespace {

using Memory = std::unique_ptr<BIO, int (*)(BIO*)>;
using Paper = std::unique_ptr<X509, void (*)(X509*)>;
using Names = std::unique_ptr<GENERAL_NAMES, void (*)(GENERAL_NAMES*)>;

std::string textOf(const ASN1_STRING* text) {
    return {reinterpret_cast<const char*>(ASN1_STRING_get0_data(text)),
            static_cast<std::size_t>(ASN1_STRING_length(text))};
}

std::string alternativeOf(const GENERAL_NAMES& names, int kind) {
    for (int i = 0; i < sk_GENERAL_NAME_num(&names); ++i) {
        const GENERAL_NAME* const name = sk_GENERAL_NAME_value(&names, i);
        // The three kinds that are asked for are texts alike.
        if (name->type == kind) return textOf(name->d.ia5);
    }
    return {};
}

std::string subjectOf(const X509& paper) {
    const Memory memory(BIO_new(BIO_s_mem()), &BIO_free);
    if (!memory ||
        X509_NAME_print_ex(memory.get(), X509_get_subject_name(&paper), 0, XN_FLAG_RFC2253) < 0)
        return {};
    char* bytes = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &bytes);
    return size <= 0 ? std::string() : std::string(bytes, static_cast<std::size_t>(size));
}

}  // namespace

std::string NameOfClient(const LinkSettings& settings) {
    if (settings.certificate.empty()) return settings.user;
    const FileContent file = LoadFile(settings.certificate);
    if (!file.error.empty())
        throw Failure("cannot read " + Quoted(settings.certificate) + ": " + file.error);
    const Memory memory(BIO_new_mem_buf(file.content.data(), static_cast<int>(file.content.size())),
                        &BIO_free);
    const Paper paper(memory ? PEM_read_bio_X509(memory.get(), nullptr, nullptr, nullptr) : nullptr,
                      &X509_free);
    if (!paper) throw Failure("there is no certificate in " + Quoted(settings.certificate));
    const Names names(static_cast<GENERAL_NAMES*>(
                          X509_get_ext_d2i(paper.get(), NID_subject_alt_name, nullptr, nullptr)),
                      &GENERAL_NAMES_free);
    if (names)
        for (const int kind : {GEN_EMAIL, GEN_DNS, GEN_URI})
            if (auto name = alternativeOf(*names, kind); !name.empty()) return name;
    return subjectOf(*paper);
}

}  // namespace oam::fleet
