// A stored alert as the API tells it.
#pragma once

#include "alerts/stored_alert.h"
#include "library/code_names.h"
#include "oam/v1/alerts.pb.h"

namespace oam::server {

void Tell(const StoredAlert& alert, CodeNames& names, v1::Alert* told);
// For threads that must not wait: without the code's name.
void TellWithoutName(const StoredAlert& alert, v1::Alert* told);

}  // namespace oam::server
