// The seven names under which the Supervisor computes keywords, one class each and one table.

#include <iterator>

#include "doors/board.h"
#include "doors/emc.h"
#include "keyword_trap.h"

using oam::CopyNumber;
using oam::CopyText;
using oam::EqualNoCase;

namespace {

// A list of names that another room keeps.
class NameListTrap : public CKeywordTrap {
  public:
    using Count = int (*)() noexcept;
    using GetAt = const char* (*)(int index) noexcept;

    constexpr NameListTrap(const char* name, const char* description, const char* elementType,
                           Count count, GetAt getAt) noexcept
        : name_(name),
          description_(description),
          elementType_(elementType),
          count_(count),
          getAt_(getAt) {}

    const char* GetName() const noexcept override { return name_; }
    const char* GetDescription() const noexcept override { return description_; }
    const char* GetElementType() const noexcept override { return elementType_; }
    int StringListCount() const noexcept override { return count_(); }
    const char* StringListGetAt(int index) const noexcept override { return getAt_(index); }
    oam_result GetValue(const char* rest, char* buffer, unsigned size) const noexcept override {
        return StringListGetValue(rest, buffer, size);
    }

  private:
    const char* name_;
    const char* description_;
    const char* elementType_;
    Count count_;
    GetAt getAt_;
};

// A structure whose members are stored or served by other traps: it has no value of its own.
template <size_t kMembers>
class StructTrap : public CKeywordTrap {
  public:
    constexpr StructTrap(const char* name, const char* const (&members)[kMembers]) noexcept
        : name_(name), members_(members) {}

    const char* GetName() const noexcept override { return name_; }
    int KeywordsCount() const noexcept override { return kMembers; }
    const char* GetKeywordsAt(int index) const noexcept override { return members_[index]; }
    oam_result GetValue(const char*, char*, unsigned) const noexcept override {
        return OAMERR_NOT_FOUND;
    }

  private:
    const char* name_;
    const char* const (&members_)[kMembers];
};

constexpr const char* kOwnMembers[] = {"ExtendedManagementComponents",
                                       "Products",
                                       "BoardPlugins",
                                       "Boards",
                                       "DetectedBoards",
                                       "Name",
                                       "AutoStartEnabled",
                                       "AutoStopEnabled",
                                       "Version",
                                       "OammonLog",
                                       "SynchronizeEnabled"};
constexpr const char* kVersionMembers[] = {"Version.Major", "Version.Minor"};

class VersionTrap : public StructTrap<2> {
  public:
    using StructTrap::StructTrap;
    oam_result GetQualifier(const char* rest, const char* qualifier, char* buffer,
                            unsigned size) const noexcept override {
        return *rest == '\0' ? OwnQualifier(qualifier, buffer, size) : OAMERR_NOT_FOUND;
    }
};

// The members of a detected board and of the structures inside it.
struct Structure {
    const char* path;  // below the element; empty for the element itself
    int count;
    const char* members[3];
};

constexpr Structure kStructures[] = {
    {"", 3, {"Name", "Product", "Location"}},
    {"Location", 1, {"PCI"}},
    {"Location.PCI", 2, {"Bus", "Slot"}},
};
constexpr const Structure& kElement = kStructures[0];

struct Field {
    const char* path;
    int field;
    bool isNumber;
};

constexpr Field kFields[] = {
    {"Name", 1, false},
    {"Product", 2, false},
    {"Location.PCI.Bus", 3, true},
    {"Location.PCI.Slot", 4, true},
};

template <class Row, size_t kRows>
const Row* findPath(const Row (&rows)[kRows], const char* path) noexcept {
    for (const Row& row : rows) {
        if (EqualNoCase(row.path, path)) return &row;
    }
    return nullptr;
}

class DetectedBoardsTrap : public CKeywordTrap {
  public:
    const char* GetName() const noexcept override { return "DetectedBoards"; }
    const char* GetDescription() const noexcept override {
        return "list of boards that were physically detected in chassis";
    }
    const char* GetElementType() const noexcept override { return "Struct"; }
    int KeywordsCount() const noexcept override { return kElement.count; }
    const char* GetKeywordsAt(int index) const noexcept override { return kElement.members[index]; }

    oam_result GetValue(const char* rest, char* buffer, unsigned size) const noexcept override {
        if (EqualNoCase(rest, ".Count")) return CopyNumber(DetectedBoardsGetCount(), buffer, size);
        const char* after = "";
        const int index = bracketIndex(rest, "[", &after);
        if (index < 0 || index >= DetectedBoardsGetCount() || *after != '.') {
            return OAMERR_NOT_FOUND;
        }
        const Field* field = findPath(kFields, after + 1);
        // Kept: an unknown member succeeds and writes nothing.
        if (field == nullptr) return OAM_SUCCESS;
        return CopyText(DetectedBoardsGetAt(index, field->field), buffer, size);
    }

    oam_result GetQualifier(const char* rest, const char* qualifier, char* buffer,
                            unsigned size) const noexcept override {
        if (*rest == '\0') return OwnQualifier(qualifier, buffer, size);
        if (EqualNoCase(rest, ".Count")) {
            return readOnlyQualifier("Integer", qualifier, buffer, size);
        }
        const char* after = "";
        if (bracketIndex(rest, "[", &after) < 0) return OAMERR_NOT_FOUND;
        if (*after == '\0') return StructureQualifier(kElement, rest, qualifier, buffer, size);
        if (*after != '.') return OAMERR_NOT_FOUND;
        const char* path = after + 1;
        const Structure* structure = *path != '\0' ? findPath(kStructures, path) : nullptr;
        if (structure != nullptr) {
            return StructureQualifier(*structure, rest, qualifier, buffer, size);
        }
        const Field* field = findPath(kFields, path);
        const bool isNumber = field != nullptr && field->isNumber;
        if (isNumber && EqualNoCase(qualifier, "Max")) return CopyText("255", buffer, size);
        return readOnlyQualifier(isNumber ? "INTEGER" : "STRING", qualifier, buffer, size);
    }

  private:
    static oam_result StructureQualifier(const Structure& structure, const char* rest,
                                         const char* qualifier, char* buffer,
                                         unsigned size) noexcept {
        if (EqualNoCase(qualifier, "Keywords.Count")) {
            if (&structure == &kElement) return CopyNumber(structure.count, buffer, size);
            const char digit[] = {static_cast<char>('0' + structure.count), '\0'};
            return CopyText(digit, buffer, size);
        }
        const int index = bracketIndex(qualifier, "Keywords[", nullptr);
        if (index < 0) return readOnlyQualifier("Struct", qualifier, buffer, size);
        if (index >= structure.count) return OAMERR_NOT_FOUND;
        oam::OwnedText element;
        oam::OwnedText member;
        oam::OwnedText name;
        if (!element.Join("DetectedBoards", rest) || !member.Join(".", structure.members[index]) ||
            !name.Join(element.Get(), member.Get())) {
            return OAMERR_NOT_ENOUGH_MEMORY;
        }
        return CopyText(name.Get(), buffer, size);
    }
};

constexpr StructTrap<std::size(kOwnMembers)> kOwn("", kOwnMembers);
constexpr NameListTrap kBoardPlugins("BoardPlugins", "list of Board Plug-ins found", "Object",
                                     &PluginsGetCount, &PluginsGetAt);
constexpr NameListTrap kBoards("Boards", "list of boards in configuration", "Object",
                               &BoardsGetCount, &BoardsGetAt);
constexpr DetectedBoardsTrap kDetectedBoards;
constexpr NameListTrap kComponents("ExtendedManagementComponents",
                                   "list of Extended Management Components found", "Object",
                                   &EmcsGetCount, &EmcsGetAt);
constexpr NameListTrap kProducts("Products", "list of supported board product types", "String",
                                 &ProductsGetCount, &ProductsGetAt);
constexpr VersionTrap kVersion("Version", kVersionMembers);

// Sorted by name without regard to case.
constexpr const CKeywordTrap* kTraps[] = {&kOwn,        &kBoardPlugins, &kBoards, &kDetectedBoards,
                                          &kComponents, &kProducts,     &kVersion};

}  // namespace

const CKeywordTrap* FindKeywordTrap(const char* name, const char** rest) noexcept {
    return CKeywordTrap::FindInArray(kTraps, static_cast<int>(std::size(kTraps)), name, rest);
}
