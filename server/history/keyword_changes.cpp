#include "history/keyword_changes.h"

#include "data_file.h"

namespace oam::server {

Keywords KeywordsOf(const DataObject& object) {
    Keywords keywords;
    for (const DataEntry& entry : object.entries) keywords[entry.name] = entry.value;
    return keywords;
}

Keywords KeywordsOf(std::string_view dataFile) {
    const DataFile file = ReadDataFile(dataFile, kObjectRoot);
    return file.objects.empty() ? Keywords() : KeywordsOf(file.objects.front());
}

std::vector<KeywordChange> CompareKeywords(const Keywords& before, const Keywords& after) {
    std::vector<KeywordChange> changes;
    const NameLess isLess;
    auto old = before.begin();
    auto now = after.begin();
    while (old != before.end() || now != after.end()) {
        if (now == after.end() || (old != before.end() && isLess(old->first, now->first))) {
            changes.push_back({old->first, old->second, std::nullopt});
            ++old;
        } else if (old == before.end() || isLess(now->first, old->first)) {
            changes.push_back({now->first, std::nullopt, now->second});
            ++now;
        } else {
            if (old->second != now->second)
                changes.push_back({now->first, old->second, now->second});
            ++old;
            ++now;
        }
    }
    return changes;
}

}  // namespace oam::server
