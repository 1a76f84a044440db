#include "product.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "base/forever.h"
#include "doors/board.h"
#include "doors/config.h"

namespace {

constexpr int kMostFromPlugin = 4096;

oam_result readProducts(unsigned long handle, const CPlugin* plugin) noexcept {
    const int count = readCount(handle, "Products.Count");
    for (int i = 0; i < count; ++i) {
        char keyword[32];
        char product[oam::kNameSize] = "";  // a plug-in may succeed and write nothing
        snprintf(keyword, sizeof keyword, "Products[%d]", i);
        if (auto failed = GetKeyword(handle, keyword, product, sizeof product)) return failed;
        product[sizeof product - 1] = '\0';
        if (auto failed = products().Insert(product, plugin)) return failed;
    }
    return OAM_SUCCESS;
}

oam_result askPlugin(const CPlugin* plugin) noexcept {
    unsigned long handle;
    if (auto failed = OpenObject(OAM_INTERNAL_CLIENT, plugin->Name(), &handle, OAM_OPEN_READ)) {
        return failed;
    }
    const oam_result read = readProducts(handle, plugin);
    const oam_result closed = CloseObject(handle);
    return read != OAM_SUCCESS ? read : closed;
}

}  // namespace

oam_result CArrayPtrsToProduct::Insert(const char* name, const CPlugin* plugin) noexcept {
    return InsertNew(name, [=]() -> Product* {
        auto* product = new (std::nothrow) Product(name, plugin);
        if (product != nullptr && product->HasName()) return product;
        delete product;
        return nullptr;
    });
}

CArrayPtrsToProduct& products() noexcept {
    static oam::Forever<CArrayPtrsToProduct> table(0, oam::kTableGrowth);
    return table.Get();
}

int readCount(unsigned long handle, const char* keyword) noexcept {
    char text[oam::kNameSize] = "";
    if (GetKeyword(handle, keyword, text, sizeof text) != OAM_SUCCESS) return 0;
    text[sizeof text - 1] = '\0';
    return std::clamp(atoi(text), 0, kMostFromPlugin);
}

oam_result productsInit() noexcept {
    for (int i = 0; i < plugins().Count(); ++i) {
        const CPlugin* plugin = plugins().Find(plugins().NameAt(i));
        if (auto failed = askPlugin(plugin)) {
            (void)productsExit();
            return failed;
        }
    }
    return OAM_SUCCESS;
}

oam_result productsExit() noexcept {
    products().RemoveAll();
    return OAM_SUCCESS;
}

int ProductsGetCount() noexcept { return products().Count(); }

const char* ProductsGetAt(int index) noexcept { return products().At(index)->Name(); }
