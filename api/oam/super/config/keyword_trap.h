// CKeywordTrap: one name under which the Supervisor computes keywords instead of storing them.
//
// A trap serves its own name and everything under it: "Boards", "Boards.Count", "Boards[3]". `rest`
// is what follows the name: empty, or beginning with "." or "[". Traps hold no state; every answer
// is what the tables say at the moment of the call. OAMERR_NOT_FOUND makes the Supervisor look
// among its stored keywords. Every answer is written by the rules of base/text.h. Runs under the
// manager lock.
#pragma once

#include "base/text.h"

class CKeywordTrap {
  public:
    virtual const char* GetName() const noexcept = 0;
    virtual const char* GetDescription() const noexcept { return ""; }
    virtual bool GetIsReadOnly() const noexcept { return true; }
    virtual const char* GetElementType() const noexcept { return "String"; }

    // The list's elements, when it is one of texts or of numbers.
    virtual int StringListCount() const noexcept { return 0; }
    virtual const char* StringListGetAt(int) const noexcept { return nullptr; }
    virtual int IntegerListCount() const noexcept { return 0; }
    virtual int IntegerListGetAt(int) const noexcept { return 0; }
    // The member keywords' names, when it is a structure.
    virtual int KeywordsCount() const noexcept { return 0; }
    virtual const char* GetKeywordsAt(int) const noexcept { return nullptr; }

    virtual oam_result GetValue(const char* rest, char* buffer, unsigned size) const noexcept = 0;
    virtual oam_result GetQualifier(const char* rest, const char* qualifier, char* buffer,
                                    unsigned size) const noexcept {
        return ListGetQualifier(rest, qualifier, buffer, size);
    }

    // The trap whose name is a prefix of `name`, followed by its end, "." or "["; null when there
    // is none. The traps are sorted by name.
    static const CKeywordTrap* FindInArray(const CKeywordTrap* const* traps, int count,
                                           const char* name, const char** rest) noexcept;

  protected:
    ~CKeywordTrap() = default;  // never deleted: the traps live as long as the process

    // ".Count" and "[i]" of a list.
    oam_result StringListGetValue(const char* rest, char* buffer, unsigned size) const noexcept;
    oam_result IntegerListGetValue(const char* rest, char* buffer, unsigned size) const noexcept;
    // What describes the list itself, its count and its elements.
    oam_result ListGetQualifier(const char* rest, const char* qualifier, char* buffer,
                                unsigned size) const noexcept;
    // The first of these three cases.
    oam_result OwnQualifier(const char* qualifier, char* buffer, unsigned size) const noexcept;
};

// "Type" and "ReadOnly" of something that is only read.
oam_result readOnlyQualifier(const char* type, const char* qualifier, char* buffer,
                             unsigned size) noexcept;

// The i of "<prefix>i]...", or -1; *after is what follows the bracket.
int bracketIndex(const char* text, const char* prefix, const char** after) noexcept;

// The seven traps of the Supervisor.
const CKeywordTrap* FindKeywordTrap(const char* name, const char** rest) noexcept;
