// What a qualifier answers when nothing is stored. The keyword plays no part.

#include "objects/object.h"

namespace {

struct QualifierDefault {
    const char* qualifier;
    const char* value;
};

constexpr QualifierDefault kDefaults[] = {
    {"Base", "10"},   {"Choices.Count", "0"}, {"Description", ""}, {"Keywords.Count", "0"},
    {"Max", "32767"}, {"Min", "0"},           {"ReadOnly", "No"},  {"Type", "String"},
};

}  // namespace

oam_result getQualifierDefault(const char* qualifier, char* buffer, unsigned size) noexcept {
    for (const QualifierDefault& row : kDefaults) {
        if (oam::EqualNoCase(row.qualifier, qualifier)) {
            return oam::CopyText(row.value, buffer, size);
        }
    }
    return OAMERR_NOT_FOUND;
}
