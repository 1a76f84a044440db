#include "fleet/link/handles.h"

namespace oam::fleet {
namespace {

ExitStatus exitOf(natsStatus status) {
    switch (status) {
        case NATS_CONNECTION_AUTH_FAILED:
        case NATS_NOT_PERMITTED:
            return kNotPermitted;
        case NATS_NOT_FOUND:
            return kNotFound;
        case NATS_NO_SERVER:
        case NATS_TIMEOUT:
        case NATS_NO_RESPONDERS:
        case NATS_IO_ERROR:
        case NATS_CONNECTION_CLOSED:
        case NATS_CONNECTION_DISCONNECTED:
        case NATS_STALE_CONNECTION:
            return kNoDaemon;
        default:
            return kFailed;
    }
}

// The library's own words for what happened last in this thread, when they belong to it.
std::string why(natsStatus status) {
    natsStatus last = NATS_OK;
    const char* const text = nats_GetLastError(&last);
    std::string told = natsStatus_GetText(status);
    if (text == nullptr || *text == '\0' || last != status) return told;
    // "(conn.c:733): SSL handshake error: ..."
    std::string detail = text;
    if (const auto end = detail.find("): "); detail.front() == '(' && end != detail.npos)
        detail.erase(0, end + 3);
    return detail == told ? told : told + ": " + detail;
}

}  // namespace

std::string DataOf(const natsMsg& message) {
    const char* const data = natsMsg_GetData(&message);
    const int size = natsMsg_GetDataLength(&message);
    return data == nullptr || size <= 0 ? std::string()
                                        : std::string(data, static_cast<std::size_t>(size));
}

std::string HeaderOf(natsMsg& message, const char* name) {
    const char* value = nullptr;
    return natsMsgHeader_Get(&message, name, &value) == NATS_OK && value != nullptr ? value : "";
}

EngineFailure::EngineFailure(const std::string& what, natsStatus status, int error)
    : Failure(what + ": " + why(status), "", exitOf(status)), engine_(status), error_(error) {}

void Require(natsStatus status, const std::string& what, int error) {
    if (status != NATS_OK) throw EngineFailure(what, status, error);
}

}  // namespace oam::fleet
