#include "configuration_file.h"

#include <algorithm>

#include "failure.h"
#include "modules.h"
#include "oam/entry.h"
#include "object_kind.h"

namespace oam {

TransferFile ExportConfiguration(const std::string& file) {
    const unsigned code = _oamConfigExport(file.c_str());
    if (code)
        throw Failure(code, "cannot export to " + Quoted(file),
                      "look at the directory's owner and free space");
    return JudgeTransferFile(file, [](const std::string&) { return false; });
}

// Of a product that no plug-in serves there are objects, but no boards: their numbers may clash.
TransferFile JudgeImport(const std::string& file) {
    return JudgeTransferFile(file, [products = ServedProducts()](const std::string& product) {
        return std::any_of(products.begin(), products.end(),
                           [&](const std::string& served) { return SameName(served, product); });
    });
}

void ImportConfiguration(const std::string& file) {
    const unsigned code = _oamConfigImport(file.c_str());
    if (code)
        throw Failure(code, "the import of " + Quoted(file) + " failed",
                      "the old data files are in oam/cfg/import-refused when they are not in "
                      "oam/cfg; `oam check` tells the rest");
}

}  // namespace oam
