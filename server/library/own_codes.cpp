#include "library/own_codes.h"

#include "oam/codes.h"

namespace oam::server {

const char* OwnCodeName(std::uint32_t code) noexcept {
    switch (code) {
#define OAM_CODE(name, value) \
    case value:               \
        return #name;
#include "oam/codes.def"
#undef OAM_CODE
        default:
            return nullptr;
    }
}

}  // namespace oam::server
