// An object of a kind made for tests: each of its own operations is noted as "<name>.<operation>"
// and scripted under the operation's name. Its keywords are the stored ones.
#pragma once

#include <new>

#include "config/registry.h"
#include "doors/doors.h"

namespace oam::test {

class NotedObject : public KOR_CMObject {
  public:
    using KOR_CMObject::KOR_CMObject;

    static NotedObject& InsertInto(CArrayPtrsToMObject& registry, const char* name,
                                   const char* dataFile) {
        NotedObject* object = new NotedObject(name, dataFile);
        (void)registry.InsertNew(name, [object] { return object; });
        return *object;
    }

    oam_result InitKeywords() noexcept override { return Note("InitKeywords"); }
    oam_result ValidateChanges() noexcept override { return Note("ValidateChanges"); }
    void HandleChanges() noexcept override { (void)Note("HandleChanges"); }
    void ValidateChangesCleanup() noexcept override { (void)Note("ValidateChangesCleanup"); }
    oam_result TrapDelete() noexcept override { return Note("TrapDelete"); }
    oam_result TrapClose(unsigned long) noexcept override { return Note("TrapClose"); }

  private:
    oam_result Note(const std::string& operation) {
        return Doors::The().NoteCall(operation, std::string(Name()) + "." + operation);
    }
};

}  // namespace oam::test
