// The stream that a session lives as long as: its name first, then the alerts that the service
// delivers to it. Its end closes the session's handles.
#pragma once

#include <grpcpp/server_context.h>

#include "oam/v1/sessions.pb.h"
#include "services/core.h"
#include "sessions/session_table.h"

namespace oam::server {

// SessionRefusal when there are too many sessions.
grpc::ServerWriteReactor<v1::AttachEvent>* NewAttachStream(Core& core, SessionTable& table,
                                                           const Call& call);

}  // namespace oam::server
