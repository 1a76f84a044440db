// The stages' bodies, one a file "<what>_stage.cpp".
#pragma once

#include "bench.h"

namespace oam::check {

void CheckLoading(Bench& bench);
void CheckLife(Bench& bench);
void CheckProducts(Bench& bench);
void CheckReading(Bench& bench);
void CheckChanging(Bench& bench);
void CheckBadArguments(Bench& bench);
void CheckOperations(Bench& bench);
void CheckConcurrency(Bench& bench);
void CheckInterruptions(Bench& bench);
void CheckDatabaseFailures(Bench& bench);
void CheckAlerts(Bench& bench);
void CheckTexts(Bench& bench);

}  // namespace oam::check
