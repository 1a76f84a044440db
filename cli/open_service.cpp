#include "open_service.h"

#include "command.h"
#include "local_service.h"

namespace oam {

std::unique_ptr<Service> OpenService(const Context& context, const Interruption& interruption) {
    return std::make_unique<LocalService>(context.place, context.title, context.console,
                                          interruption);
}

}  // namespace oam
