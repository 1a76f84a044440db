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

grpc::Status statusWith(grpc::StatusCode code, const v1::Refusal& refusal) {
    // The message of a status travels as text; the details keep every byte.
    return {code, Shown(refusal.rule()), refusal.SerializeAsString()};
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
    refusal.set_object(failure.About().object);
    refusal.set_keyword(failure.About().keyword);
    refusal.set_value(failure.About().value);
    refusal.set_rule(failure.what());
    refusal.set_remedy(failure.Advice());
    return statusWith(statusOf(failure), refusal);
}

grpc::Status Refused(grpc::StatusCode status, const std::string& rule, const std::string& remedy) {
    v1::Refusal refusal;
    refusal.set_party(v1::Refusal::PARTY_DAEMON);
    refusal.set_rule(rule);
    refusal.set_remedy(remedy);
    return statusWith(status, refusal);
}

}  // namespace oam::server
