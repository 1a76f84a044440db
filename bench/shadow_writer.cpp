// Publishes a table of 31 boards: prints the seconds that each took. The library has no function
// that does only this, so the room that does it is linked.
//
//   oam_bench_shadow_writer ours|limit COUNT

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "in_place_table.h"
#include "oam/shadow.h"
#include "objects/shadow.h"
#include "stopwatch.h"

using namespace oam::bench;

namespace {

char names[kShadowBoards][32];

template <class Write>
int timeWrites(int count, Write write) {
    for (int i = 0; i < kShadowBoards; ++i) {
        std::snprintf(names[i], sizeof names[i], "Board %05d", i);
    }
    for (int i = 0; i < 100; ++i) {
        if (!write(static_cast<unsigned>(i))) return 1;
    }
    const Stopwatch watch;
    for (int i = 0; i < count; ++i) (void)write(static_cast<unsigned>(i));
    std::printf("%.9f\n", watch.Seconds() / count);
    return 0;
}

// As the service does it after a change of the board table.
bool publish(unsigned first) {
    ShadowImage image(false);
    for (unsigned i = 0; i < kShadowBoards; ++i) {
        image.Add(CBoardIDShadow(names[i], first + i, "driver", "7", true));
    }
    return PublishShadow(image) == OAM_SUCCESS;
}

int limit(int count) {
    InPlaceTable* table = InPlaceTable::Make();
    if (table == nullptr) return 1;
    return timeWrites(count, [=](unsigned first) {
        table->Write(names, first);
        return true;
    });
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) return 2;
    const int writes = std::atoi(arguments[2]);
    if (std::strcmp(arguments[1], "limit") == 0) return limit(writes);
    return oamShadowInit() == OAM_SUCCESS ? timeWrites(writes, publish) : 1;
}
