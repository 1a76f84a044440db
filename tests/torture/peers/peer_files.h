// The three files of the shadow, as another process may leave them: the state that a peer starts
// from is made by hand, where no sequence of calls leads to it.
#pragma once

#include <string>
#include <vector>

#include "generation.h"

namespace oam::torture {

constexpr const char* kSegmentFile = "OAM_BoardIDsShadow";
constexpr const char* kJournalFile = "OAM_BoardIDsShadow.journal";
constexpr const char* kLockFile = "OAM_BoardIDsShadowCKorSharedMemoryArray";

// In the directory that KOR_SHM_DIR names.
std::string SharedPath(const std::string& name);
std::vector<std::string> SharedFiles();
void RemoveSharedFiles();

// Each makes what it needs with a process of its own.
//
// A table, and nothing in the journal.
void LeaveTable(Generation generation);
// A writer's journal that is complete and was not copied yet.
void LeaveJournal(Generation generation);
// The same with any bytes, from the segment's beginning on.
void LeaveForeignJournal(const std::string& image);
// The lock, held by a process that died.
void LeaveLockHeld();
// A lock that somebody took from a dead process and gave back without repairing it.
void LeaveLockSpoiled();

}  // namespace oam::torture
