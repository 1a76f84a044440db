#include "journal/library_logs.h"

#include <google/protobuf/stubs/logging.h>
#include <grpc/support/log.h>

#include <exception>
#include <mutex>
#include <string>

namespace oam::server {
namespace {

std::mutex mutex;
Journal* destination = nullptr;  // under the mutex

void tell(gpr_log_func_args* said) try {
    const std::lock_guard hold(mutex);
    if (destination != nullptr && said->severity == GPR_LOG_SEVERITY_ERROR)
        destination->Say(Priority::kWarning, std::string("transport: ") + said->message);
} catch (const std::exception&) {
    // No memory for what would only be told.
}

}  // namespace

LibraryLogs::LibraryLogs(Journal& journal) {
    const std::lock_guard hold(mutex);
    destination = &journal;
    google::protobuf::SetLogHandler(nullptr);
    gpr_set_log_function(&tell);
}

LibraryLogs::~LibraryLogs() {
    const std::lock_guard hold(mutex);
    destination = nullptr;
}

}  // namespace oam::server
