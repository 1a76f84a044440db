// The boards that the plug-ins found in the chassis at the last detection.
//
// A detection fills a table of its own and puts it in the place of the old one under the manager
// lock, under which the readers run too.
#pragma once

#include "objects/table.h"
#include "plugin.h"

class CDetectedBoard {
  public:
    CDetectedBoard(const char* name, unsigned bus, unsigned slot, const char* product) noexcept
        : bus_(bus), slot_(slot) {
        complete_ = name_.Assign(name) && product_.Assign(product);
    }
    const char* Name() const noexcept { return name_.OrEmpty(); }
    const char* ProductName() const noexcept { return product_.OrEmpty(); }
    unsigned Bus() const noexcept { return bus_; }
    unsigned Slot() const noexcept { return slot_; }
    bool IsComplete() const noexcept { return complete_; }

    static int Compare(const CDetectedBoard& board, const char* name) noexcept {
        return zolStricmp(board.Name(), name);
    }

  private:
    oam::OwnedText name_;
    oam::OwnedText product_;
    unsigned bus_;
    unsigned slot_;
    bool complete_;
};

class CArrayPtrsToDetectedBoard : public oam::NamedTable<CDetectedBoard> {
  public:
    using NamedTable::NamedTable;
    oam_result Insert(const char* name, unsigned bus, unsigned slot, const char* product) noexcept;
};

// Runs a detection. The code of a plug-in's object that could not be opened or closed.
oam_result detectedproductsInit() noexcept;
