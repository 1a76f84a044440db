// A read beside the read of a resource over the platform interface of the field.

#include "hpi_peer.h"
#include "oam/entry.h"
#include "rows.h"
#include "site.h"
#include "stopwatch.h"

namespace oam::bench {

namespace {

void ours(benchmark::State& state) {
    useSite(Shape{});
    const std::string name = boardName(15);
    bool good = true;
    for (auto _ : state) {
        unsigned long handle;
        char value[512];
        good = _oamOpenObject(9, name.c_str(), &handle, OAM_OPEN_READ) == OAM_SUCCESS &&
               _oamGetKeyword(handle, kSomeKeyword, value, sizeof value) == OAM_SUCCESS &&
               _oamCloseObject(handle) == OAM_SUCCESS && good;
    }
    BENCH_CHECK(state, good);
}

}  // namespace

void addHpiRows() {
    addRow("hpi", "any read, beside a resource read", 0, 0.2)
        .Ours(Clock::kWhole, ours)
        .Peer(Clock::kWhole, "OpenHPI", hpiPeer());
}

}  // namespace oam::bench
