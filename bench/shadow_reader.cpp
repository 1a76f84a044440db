// A process that reads the board shadow: prints the seconds that so many look-ups took.
//
//   oam_bench_shadow_reader ours|limit COUNT

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "in_place_table.h"
#include "oam/shadow.h"
#include "site.h"
#include "stopwatch.h"

using namespace oam::bench;

namespace {

template <class Find>
int timeLookUps(int count, Find find) {
    char names[kShadowBoards][32];
    for (int i = 0; i < kShadowBoards; ++i) std::strcpy(names[i], boardName(i).c_str());
    unsigned number = 0;
    for (int i = 0; i < 1000; ++i) {
        if (!find(names[i % kShadowBoards], &number)) return 1;
    }
    const Stopwatch watch;
    for (int i = 0; i < count; ++i) (void)find(names[i * 7 % kShadowBoards], &number);
    std::printf("%.9f\n", watch.Seconds() / count);
    return 0;
}

int limit(int count) {
    InPlaceTable* table = InPlaceTable::Make();
    if (table == nullptr) return 1;
    char names[kShadowBoards][32];
    for (int i = 0; i < kShadowBoards; ++i) std::strcpy(names[i], boardName(i).c_str());
    table->Write(names, 0);
    return timeLookUps(
        count, [=](const char* name, unsigned* number) { return table->Find(name, number); });
}

int ours(int count) {
    if (oamShadowInit() != OAM_SUCCESS) return 1;
    return timeLookUps(count, [](const char* name, unsigned* number) {
        return oamShadowBoardGetNumber(0, name, number) == OAM_SUCCESS;
    });
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) return 2;
    const int lookUps = std::atoi(arguments[2]);
    return std::strcmp(arguments[1], "ours") == 0 ? ours(lookUps) : limit(lookUps);
}
