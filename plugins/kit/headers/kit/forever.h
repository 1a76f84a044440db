// A constant that is never destroyed: a thread may still be in an entry, and read it, while the
// process's exit handlers run.
#pragma once

#include <utility>

namespace oam::kit {

template <class Type>
const Type& forever(Type value) {
    return *new const Type(std::move(value));
}

}  // namespace oam::kit
