#include "open_service.h"

#include <system_error>

#include "command.h"
#include "installation.h"
#include "local_service.h"
#include "remote/remote_service.h"
#include "wire/local_socket.h"

namespace oam {

std::unique_ptr<Service> OpenService(const Context& context, const Interruption& interruption) {
    try {
        const auto daemon = wire::Connect(wire::SocketPath(context.place.Directory()));
        if (daemon) return ConnectRemoteService(*daemon, context.console, interruption);
    } catch (const std::system_error& error) {
        throw Failure(std::string("the daemon cannot be reached: ") + error.what(),
                      "`systemctl status oamd` tells how it is", kNoDaemon);
    }
    return std::make_unique<LocalService>(context.place, context.title, context.console,
                                          interruption);
}

}  // namespace oam
