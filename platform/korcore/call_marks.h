// Marks of calls into foreign code: who is inside which entry of which module, about what and since
// when; and how many calls there were and how long they took.
//
// The thread that calls makes a mark around the call. That takes no lock and no memory and waits
// for nobody. Anyone may read at any time, also while calls hang.
//
// Times are of the clock that ticks every few milliseconds (CLOCK_MONOTONIC_COARSE), since a look
// at it costs next to nothing. So one short call lasts nothing or a whole tick; the sum over many
// calls is right.
#pragma once

#include <cstddef>
#include <cstdint>

#include "korcore/mutex.h"

constexpr unsigned kKorMarkedModules = 64;
constexpr unsigned kKorMarkedEntries = 32;
constexpr unsigned kKorMarks = 512;  // calls at a time; more are counted, but not marked
constexpr size_t kKorMarkTextSize = 128;

struct KorEntryName {
    unsigned number;   // below kKorMarkedEntries
    const char* text;  // a static text
};

// The number of a module, for as long as the process lives: the same for the same file name. 0,
// which stands for all others, when the table is full. Names are cut to kKorMarkTextSize.
KOR_API unsigned KorMarkedModule(const char* fileName) noexcept;

class KOR_API KorCallMark {
  public:
    // `about`: the board or object, or null. It is copied.
    KorCallMark(unsigned module, KorEntryName entry, const char* about) noexcept;
    ~KorCallMark();
    KorCallMark(const KorCallMark&) = delete;
    KorCallMark& operator=(const KorCallMark&) = delete;

  private:
    const unsigned module_;
    const unsigned entry_;
    const unsigned mark_;  // kKorMarks: none was free
    const uint64_t since_;
};

struct KorCallInside {
    char module[kKorMarkTextSize];  // empty: of no known module
    const char* entry;
    char about[kKorMarkTextSize];
    int thread;      // as the kernel numbers threads
    uint64_t since;  // as KorMarkTime
};

// The call with the mark of this number (below kKorMarks); false when nobody has it.
KOR_API bool KorCallAt(unsigned mark, KorCallInside* call) noexcept;

struct KorEntryUse {
    const char* module;
    const char* entry;
    uint64_t calls;        // begun
    uint64_t nanoseconds;  // of those that have returned
};

// False when this entry of this module was never called.
KOR_API bool KorUseAt(unsigned module, unsigned entry, KorEntryUse* use) noexcept;

// Nanoseconds of the clock that the marks have.
KOR_API uint64_t KorMarkTime() noexcept;
