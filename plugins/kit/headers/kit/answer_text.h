// The service's rule for every text that a module answers: it is copied only when it fits with its
// NUL, and a null buffer asks only whether it exists.
#pragma once

#include <cstring>
#include <optional>
#include <string>

#include "oam/codes.h"

namespace oam::kit {

inline oam_result answerText(const std::optional<std::string>& text, char* buffer,
                             unsigned int size) {
    if (!text) return OAMERR_NOT_FOUND;
    if (buffer == nullptr) return OAM_SUCCESS;
    if (text->size() >= size) return OAMERR_NOT_ENOUGH_MEMORY;
    std::memcpy(buffer, text->c_str(), text->size() + 1);
    return OAM_SUCCESS;
}

}  // namespace oam::kit
