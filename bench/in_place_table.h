// The least that a table shared between processes costs: a robust mutex and the records, searched
// and written in place.
#pragma once

#include <pthread.h>
#include <strings.h>
#include <sys/mman.h>

#include <cstdio>
#include <cstring>
#include <new>

namespace oam::bench {

constexpr int kShadowBoards = 31;

struct InPlaceRecord {
    char name[132];
    unsigned number;
    char driverName[129];
    char driverBoardId[65];
    char isALaw;
};
static_assert(sizeof(InPlaceRecord) == 332);

class InPlaceTable {
  public:
    static InPlaceTable* Make() {
        void* memory = mmap(nullptr, sizeof(InPlaceTable), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        return memory != MAP_FAILED ? new (memory) InPlaceTable : nullptr;
    }

    bool Find(const char* name, unsigned* number) {
        pthread_mutex_lock(&mutex_);
        int low = 0;
        int high = kShadowBoards;
        bool found = false;
        while (low < high && !found) {
            const int middle = (low + high) / 2;
            const int order = strcasecmp(records_[middle].name, name);
            found = order == 0;
            if (found) *number = records_[middle].number;
            (order < 0 ? low : high) = order < 0 ? middle + 1 : middle;
        }
        pthread_mutex_unlock(&mutex_);
        return found;
    }

    // Each record from its texts.
    void Write(const char (*names)[32], unsigned first) {
        pthread_mutex_lock(&mutex_);
        for (int i = 0; i < kShadowBoards; ++i) {
            InPlaceRecord& record = records_[i];
            std::memset(&record, 0, sizeof record);
            std::strcpy(record.name, names[i]);
            record.number = first + static_cast<unsigned>(i);
            std::strcpy(record.driverName, "driver");
            std::strcpy(record.driverBoardId, "7");
            record.isALaw = 1;
        }
        pthread_mutex_unlock(&mutex_);
    }

  private:
    InPlaceTable() {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
        pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
        pthread_mutex_init(&mutex_, &attributes);
    }

    pthread_mutex_t mutex_;
    InPlaceRecord records_[kShadowBoards];
};

}  // namespace oam::bench
