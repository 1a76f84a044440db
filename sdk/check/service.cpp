#include "service.h"

#include <dlfcn.h>

namespace oam::check {
namespace {

template <class Function>
Function behind(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

const ServiceFunctions& Service() {
#define CHECK_LOOKUP(name) .name = behind<decltype(ServiceFunctions::name)>("_oam" #name),
    static const ServiceFunctions kFunctions = {CHECK_SERVICE_FUNCTIONS(CHECK_LOOKUP)};
#undef CHECK_LOOKUP
    return kFunctions;
}

}  // namespace oam::check
