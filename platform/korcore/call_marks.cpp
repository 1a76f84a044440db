#include "korcore/call_marks.h"

#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstring>

namespace {

constexpr size_t kWords = kKorMarkTextSize / sizeof(uint64_t);

// How a mark's `turn` tells what it is: it grows by one with each step, so a reader that finds the
// same value before and after has read one call's facts, whole.
constexpr uint64_t kSteps = 3;  // free, being written, in use
constexpr uint64_t kInUse = 2;

// Facts are stored with release and read with acquire: whoever sees one of a later call sees the
// later turn too.
struct alignas(64) Mark {
    std::atomic<uint64_t> turn{0};
    std::atomic<uint64_t> since{0};
    std::atomic<unsigned> module{0};
    std::atomic<const char*> entry{nullptr};
    std::atomic<int> thread{0};
    std::atomic<uint64_t> about[kWords]{};
};

struct Use {
    std::atomic<const char*> entry{nullptr};
    std::atomic<uint64_t> calls{0};
    std::atomic<uint64_t> nanoseconds{0};
};

struct ModuleName {
    char text[kKorMarkTextSize];
};

constinit Mark marks[kKorMarks];
constinit Use uses[kKorMarkedModules][kKorMarkedEntries];

// Written once each, under the lock, before the count tells of it. Number 0 has the empty name.
constinit ModuleName modules[kKorMarkedModules]{};
constinit std::atomic<unsigned> moduleCount{1};
pthread_mutex_t moduleLock = PTHREAD_MUTEX_INITIALIZER;

constinit std::atomic<unsigned> threadCount{0};

struct ThreadPlace {
    int thread = 0;
    unsigned next = 0;  // where this thread looks for a mark first
};
constinit thread_local ThreadPlace place;

void findPlace() noexcept {
    constexpr unsigned kApart = 8;  // calls within calls have the marks beside
    place.thread = gettid();
    place.next = threadCount.fetch_add(kApart, std::memory_order_relaxed) % kKorMarks;
}

unsigned takeMark() noexcept {
    if (place.thread == 0) findPlace();
    for (unsigned tried = 0; tried < kKorMarks; ++tried) {
        const unsigned number = (place.next + tried) % kKorMarks;
        uint64_t turn = marks[number].turn.load(std::memory_order_relaxed);
        if (turn % kSteps == 0 &&
            marks[number].turn.compare_exchange_strong(turn, turn + 1, std::memory_order_acq_rel)) {
            place.next = (number + 1) % kKorMarks;
            return number;
        }
    }
    return kKorMarks;
}

void storeText(const char* text, std::atomic<uint64_t>* words) noexcept {
    if (text == nullptr) text = "";
    const size_t length = strnlen(text, kKorMarkTextSize - 1);
    const size_t whole = length / sizeof(uint64_t);
    for (size_t i = 0; i < whole; ++i) {
        uint64_t word;
        memcpy(&word, text + i * sizeof word, sizeof word);
        words[i].store(word, std::memory_order_release);
    }
    uint64_t last = 0;  // with the NUL
    memcpy(&last, text + whole * sizeof last, length % sizeof last);
    words[whole].store(last, std::memory_order_release);
}

void loadText(const std::atomic<uint64_t>* words, char* text) noexcept {
    for (size_t i = 0; i < kWords; ++i) {
        const uint64_t word = words[i].load(std::memory_order_acquire);
        memcpy(text + i * sizeof word, &word, sizeof word);
    }
    text[kKorMarkTextSize - 1] = '\0';
}

}  // namespace

unsigned KorMarkedModule(const char* fileName) noexcept {
    ModuleName name{};
    strncpy(name.text, fileName, sizeof name.text - 1);
    pthread_mutex_lock(&moduleLock);
    const unsigned count = moduleCount.load(std::memory_order_relaxed);
    unsigned number = 1;
    while (number < count && strcmp(modules[number].text, name.text) != 0) ++number;
    if (number == kKorMarkedModules) {
        number = 0;
    } else if (number == count) {
        modules[number] = name;
        moduleCount.store(count + 1, std::memory_order_release);
    }
    pthread_mutex_unlock(&moduleLock);
    return number;
}

KorCallMark::KorCallMark(unsigned module, KorEntryName entry, const char* about) noexcept
    : module_(module < kKorMarkedModules ? module : 0),
      entry_(entry.number % kKorMarkedEntries),
      mark_(takeMark()),
      since_(KorMarkTime()) {
    Use& use = uses[module_][entry_];
    use.entry.store(entry.text, std::memory_order_relaxed);
    use.calls.fetch_add(1, std::memory_order_release);
    if (mark_ == kKorMarks) return;
    Mark& mark = marks[mark_];
    mark.since.store(since_, std::memory_order_release);
    mark.module.store(module_, std::memory_order_release);
    mark.entry.store(entry.text, std::memory_order_release);
    mark.thread.store(place.thread, std::memory_order_release);
    storeText(about, mark.about);
    mark.turn.store(mark.turn.load(std::memory_order_relaxed) + 1, std::memory_order_release);
}

KorCallMark::~KorCallMark() {
    if (const uint64_t lasted = KorMarkTime() - since_; lasted != 0)
        uses[module_][entry_].nanoseconds.fetch_add(lasted, std::memory_order_relaxed);
    if (mark_ == kKorMarks) return;
    std::atomic<uint64_t>& turn = marks[mark_].turn;
    turn.store(turn.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    place.next = mark_;
}

bool KorCallAt(unsigned number, KorCallInside* call) noexcept {
    if (number >= kKorMarks) return false;
    const Mark& mark = marks[number];
    const uint64_t turn = mark.turn.load(std::memory_order_acquire);
    if (turn % kSteps != kInUse) return false;
    call->since = mark.since.load(std::memory_order_acquire);
    const unsigned module = mark.module.load(std::memory_order_acquire);
    call->entry = mark.entry.load(std::memory_order_acquire);
    call->thread = mark.thread.load(std::memory_order_acquire);
    loadText(mark.about, call->about);
    if (mark.turn.load(std::memory_order_acquire) != turn) return false;  // it has just ended
    memcpy(call->module, modules[module].text, sizeof call->module);
    return true;
}

bool KorUseAt(unsigned module, unsigned entry, KorEntryUse* use) noexcept {
    if (module >= moduleCount.load(std::memory_order_acquire) || entry >= kKorMarkedEntries)
        return false;
    const Use& found = uses[module][entry];
    use->calls = found.calls.load(std::memory_order_acquire);
    if (use->calls == 0) return false;
    use->module = modules[module].text;
    use->entry = found.entry.load(std::memory_order_relaxed);
    use->nanoseconds = found.nanoseconds.load(std::memory_order_relaxed);
    return true;
}

uint64_t KorMarkTime() noexcept {
    constexpr uint64_t kSecond = 1000000000;
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return static_cast<uint64_t>(now.tv_sec) * kSecond + static_cast<uint64_t>(now.tv_nsec);
}
