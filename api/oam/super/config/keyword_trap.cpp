#include "keyword_trap.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "zol/zol.h"

using oam::CopyNumber;
using oam::CopyText;
using oam::EqualNoCase;

const CKeywordTrap* CKeywordTrap::FindInArray(const CKeywordTrap* const* traps, int count,
                                              const char* name, const char** rest) noexcept {
    int low = 0;
    int high = count;
    while (low < high) {
        const int middle = (low + high) / 2;
        const char* trapped = traps[middle]->GetName();
        const size_t length = strlen(trapped);
        int order = zolStrnicmp(trapped, name, length);
        if (order == 0) {
            const char next = name[length];
            if (next == '\0' || next == '.' || next == '[') {
                *rest = name + length;
                return traps[middle];
            }
            order = -1;
        }
        if (order < 0) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return nullptr;
}

int bracketIndex(const char* text, const char* prefix, const char** after) noexcept {
    if (!oam::StartsWithNoCase(text, prefix)) return -1;
    const char* digits = text + strlen(prefix);
    if (isdigit(static_cast<unsigned char>(*digits)) == 0) return -1;
    char* end;
    const unsigned long index = strtoul(digits, &end, 10);
    if (*end != ']' || index > INT32_MAX) return -1;
    if (after != nullptr) *after = end + 1;
    return static_cast<int>(index);
}

namespace {

// The i of exactly "[i]", or -1.
int elementIndex(const char* rest) noexcept {
    const char* after = "";
    const int index = bracketIndex(rest, "[", &after);
    return *after == '\0' ? index : -1;
}

}  // namespace

oam_result CKeywordTrap::StringListGetValue(const char* rest, char* buffer,
                                            unsigned size) const noexcept {
    if (EqualNoCase(rest, ".Count")) return CopyNumber(StringListCount(), buffer, size);
    const int index = elementIndex(rest);
    if (index < 0 || index >= StringListCount()) return OAMERR_NOT_FOUND;
    return CopyText(StringListGetAt(index), buffer, size);
}

oam_result CKeywordTrap::IntegerListGetValue(const char* rest, char* buffer,
                                             unsigned size) const noexcept {
    if (EqualNoCase(rest, ".Count")) return CopyNumber(IntegerListCount(), buffer, size);
    const int index = elementIndex(rest);
    if (index < 0 || index >= IntegerListCount()) return OAMERR_NOT_FOUND;
    return CopyNumber(IntegerListGetAt(index), buffer, size);
}

oam_result readOnlyQualifier(const char* type, const char* qualifier, char* buffer,
                             unsigned size) noexcept {
    if (EqualNoCase(qualifier, "Type")) return CopyText(type, buffer, size);
    if (EqualNoCase(qualifier, "ReadOnly")) return CopyText("Yes", buffer, size);
    return OAMERR_NOT_FOUND;
}

oam_result CKeywordTrap::OwnQualifier(const char* qualifier, char* buffer,
                                      unsigned size) const noexcept {
    const int members = KeywordsCount();
    if (EqualNoCase(qualifier, "Description")) return CopyText(GetDescription(), buffer, size);
    if (EqualNoCase(qualifier, "Type")) {
        return CopyText(members != 0 ? "Struct" : "Array", buffer, size);
    }
    if (EqualNoCase(qualifier, "ReadOnly")) {
        return CopyText(GetIsReadOnly() ? "Yes" : "No", buffer, size);
    }
    if (EqualNoCase(qualifier, "Keywords.Count")) {
        return members >= 1 ? CopyNumber(members, buffer, size) : OAMERR_NOT_FOUND;
    }
    const int index = bracketIndex(qualifier, "Keywords[", nullptr);
    if (index < 0 || index >= members) return OAMERR_NOT_FOUND;
    return CopyText(GetKeywordsAt(index), buffer, size);
}

oam_result CKeywordTrap::ListGetQualifier(const char* rest, const char* qualifier, char* buffer,
                                          unsigned size) const noexcept {
    if (*rest == '\0') return OwnQualifier(qualifier, buffer, size);
    if (EqualNoCase(rest, ".Count")) return readOnlyQualifier("Integer", qualifier, buffer, size);
    // The index is not checked.
    if (*rest == '[') return readOnlyQualifier(GetElementType(), qualifier, buffer, size);
    return OAMERR_NOT_FOUND;
}
