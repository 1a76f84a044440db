#include "transport/refusal_status.h"

#include "foreign_text.h"
#include "library/own_codes.h"
#include "oam/entry.h"
#include "oam/v1/refusal.pb.h"

namespace oam::server {
namespace {

grpc::StatusCode statusOf(const Failure& failure) {
    switch (failure.Code()) {
        case 0:
            return grpc::StatusCode::FAILED_PRECONDITION;
        case OAMERR_NOT_FOUND:
            return grpc::StatusCode::NOT_FOUND;
        case OAMERR_ALREADY_EXISTS:
            return grpc::StatusCode::ALREADY_EXISTS;
        case OAMERR_NOT_ENOUGH_MEMORY:
            return grpc::StatusCode::RESOURCE_EXHAUSTED;
        case OAMERR_SERVER_NOT_RUNNING:
            return grpc::StatusCode::UNAVAILABLE;
        case OAMERR_FILE_READ_ERROR:
        case OAMERR_FILE_WRITE_ERROR:
            return grpc::StatusCode::INTERNAL;
        default:
            return grpc::StatusCode::FAILED_PRECONDITION;
    }
}

// A refusal travels in headers, and a client takes 8 KB of these, after they are encoded: a status
// that is larger is none to it. So what is refused is told by its beginning.
constexpr std::size_t kLongestName = 256;
constexpr std::size_t kLongestSentence = 768;

// Whole characters.
std::string cut(std::string text, std::size_t size) {
    if (text.size() <= size) return text;
    while (size != 0 && (static_cast<unsigned char>(text[size]) & 0xc0) == 0x80) --size;
    text.resize(size);
    return text + "...";
}

grpc::Status statusWith(grpc::StatusCode code, const v1::Refusal& refusal) {
    // The message of a status travels as text; the details keep every byte.
    return {code, cut(Shown(refusal.rule()), kLongestSentence), refusal.SerializeAsString()};
}

}  // namespace

grpc::Status RefusalOf(const Failure& failure) {
    v1::Refusal refusal;
    refusal.set_party(failure.Code() == 0           ? v1::Refusal::PARTY_DAEMON
                      : OwnCodeName(failure.Code()) ? v1::Refusal::PARTY_SERVICE
                                                    : v1::Refusal::PARTY_PLUGIN);
    refusal.set_code(failure.Code());
    if (const char* name = failure.Code() ? _oamGetText(failure.Code()) : nullptr)
        refusal.set_code_name(Shown(name));
    refusal.set_object(cut(failure.About().object, kLongestName));
    refusal.set_keyword(cut(failure.About().keyword, kLongestName));
    refusal.set_value(cut(failure.About().value, kLongestName));
    refusal.set_rule(cut(failure.what(), kLongestSentence));
    refusal.set_remedy(cut(failure.Advice(), kLongestSentence));
    return statusWith(statusOf(failure), refusal);
}

grpc::Status Refused(grpc::StatusCode status, const std::string& rule, const std::string& remedy) {
    v1::Refusal refusal;
    refusal.set_party(v1::Refusal::PARTY_DAEMON);
    refusal.set_rule(cut(rule, kLongestSentence));
    refusal.set_remedy(cut(remedy, kLongestSentence));
    return statusWith(status, refusal);
}

}  // namespace oam::server
