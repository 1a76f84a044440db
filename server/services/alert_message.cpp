#include "services/alert_message.h"

#include "services/time_message.h"

namespace oam::server {

void Tell(const StoredAlert& alert, CodeNames& names, v1::Alert* told) {
    TellWithoutName(alert, told);
    told->set_code_name(names.Of(alert.code));
}

void TellWithoutName(const StoredAlert& alert, v1::Alert* told) {
    told->set_sequence(alert.sequence);
    Tell(alert.time, told->mutable_time());
    told->set_code(alert.code);
    told->set_severity(alert.severity);
    told->set_source(alert.source);
    told->set_text(alert.text);
    told->set_operation(alert.operation);
}

}  // namespace oam::server
