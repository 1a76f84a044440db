// The products that the plug-ins support, each with the plug-in that serves it.
//
// Written only while the service starts and stops; a product is unique over all plug-ins.
#pragma once

#include "objects/table.h"
#include "plugin.h"

class Product {
  public:
    Product(const char* name, const CPlugin* plugin) noexcept : plugin_(plugin) {
        (void)name_.Assign(name);
    }
    const char* Name() const noexcept { return name_.OrEmpty(); }
    bool HasName() const noexcept { return !name_.IsNull(); }
    const CPlugin* Plugin() const noexcept { return plugin_; }

    static int Compare(const Product& product, const char* name) noexcept {
        return zolStricmp(product.Name(), name);
    }

  private:
    oam::OwnedText name_;
    const CPlugin* plugin_;  // not owned
};

class CArrayPtrsToProduct : public oam::NamedTable<Product> {
  public:
    using NamedTable::NamedTable;
    oam_result Insert(const char* name, const CPlugin* plugin) noexcept;
};

CArrayPtrsToProduct& products() noexcept;

// Asks every plug-in's object for its products. OAMERR_ALREADY_EXISTS when a product is named
// twice.
oam_result productsInit() noexcept;
oam_result productsExit() noexcept;

// A count as a plug-in's object answers it: 0 when missing or malformed, at most 4,096.
int readCount(unsigned long handle, const char* keyword) noexcept;
