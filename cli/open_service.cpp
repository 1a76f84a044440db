#include "open_service.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "command.h"
#include "installation.h"
#include "local_service.h"
#include "lock_file.h"
#include "remote/remote_service.h"
#include "wire/local_socket.h"

namespace oam {

namespace {

// Nothing when none listens.
std::unique_ptr<Service> connect(const Context& context, const Interruption& interruption) {
    if (context.source != nullptr) return context.source->Open(context.console, interruption);
    if (context.host != nullptr)
        return ConnectRemoteHost(*context.host, context.console, interruption);
    try {
        const auto daemon = wire::Connect(wire::SocketPath(context.place.Directory()));
        if (!daemon) return nullptr;
        return ConnectRemoteService(*daemon, context.console, interruption);
    } catch (const std::system_error& error) {
        throw Failure(std::string("the daemon cannot be reached: ") + error.what(),
                      "`systemctl status oamd` tells how it is", kNoDaemon);
    }
}

// Whether the service is a daemon's to run: one is there that cannot be reached yet or any more, or
// the caller may not work on the installation itself.
bool isForDaemon(const Installation& place) {
    const auto holder = LockFile::Holder(place);
    if (holder && holder->command.starts_with("oamd")) return true;
    return access(place.Path(kConfigDirectory).c_str(), R_OK | W_OK | X_OK) != 0 && errno == EACCES;
}

}  // namespace

std::unique_ptr<Service> OpenService(const Context& context, const Interruption& interruption) {
    if (auto service = connect(context, interruption)) return service;
    try {
        return std::make_unique<LocalService>(context.place, context.title, context.console,
                                              interruption);
    } catch (const Failure& failure) {
        if (!isForDaemon(context.place)) throw;
        throw Failure(std::string("no daemon answers, and ") + failure.what(), failure.Advice(),
                      kNoDaemon);
    }
}

std::unique_ptr<Service> OpenDaemon(const Context& context, const Interruption& interruption) {
    if (auto service = connect(context, interruption)) return service;
    throw Failure("no daemon serves " + context.place.Directory(),
                  "start one: oamd --dir " + context.place.Directory(), kNoDaemon);
}

}  // namespace oam
