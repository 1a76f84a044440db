#include "transfer_file.h"

#include "failure.h"
#include "file_content.h"

namespace oam {

TransferFile JudgeTransferFile(const std::string& path, const IsServed& served) {
    const FileContent file = LoadFile(path);
    if (!file.error.empty()) throw Failure("cannot read " + Quoted(path) + ": " + file.error);
    const DataFile data = ReadDataFile(file.content, kExportRoot);
    std::vector<FoundObject> objects;
    std::vector<FoundName> names;
    for (const DataObject& object : data.objects) {
        objects.push_back({path, object});
        names.push_back({path, object.at, object.name});
    }
    TransferFile result{CheckObjects(objects, served), objects.size()};
    const auto shared = CheckSharedDataFiles(names);
    result.findings.insert(result.findings.end(), shared.begin(), shared.end());
    if (data.mistake) result.findings.push_back({path, data.mistake->at, data.mistake->text});
    return result;
}

}  // namespace oam
