// The child's side of a run: what it leaves behind when the module crashes in it or ends it.
#pragma once

#include "call_journal.h"
#include "temporary_installation.h"

namespace oam::check {

// Makes the calling process, just forked, the judged child: in the installation, silent, ended with
// its parent, and telling its death in the journal.
void BecomeJudgedChild(CallJournal& journal, const TemporaryInstallation& place, int findings);

}  // namespace oam::check
