#include "sim_codes.h"

namespace oam::sim {

const char* codeName(unsigned int code) {
    switch (code) {
#define SIM_CODE(name, value) \
    case name:                \
        return #name;
#include "sim_codes.def"
#undef SIM_CODE
        default:
            return nullptr;
    }
}

}  // namespace oam::sim
