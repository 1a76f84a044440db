// The mirror's description as OpenAPI 3.1, made of the table and of the API's own descriptors.
#pragma once

#include "mirror/json_codec.h"

namespace oam::console {

Json OpenApi();

}  // namespace oam::console
