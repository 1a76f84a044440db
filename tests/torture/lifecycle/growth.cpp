#include "growth.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/watchdog.h"

namespace oam::torture {

namespace {

Resources lookAtRest(int threads) {
    if (!AwaitThreads(threads)) Watchdog::GiveUp("threads do not end");
    return LookAtResources();
}

bool hasGrown(const Resources& before, const Resources& after, const Allowed& allowed) {
    return after.heapBytes > before.heapBytes + allowed.heapBytes ||
           (kHasMeaningfulResident && after.residentKb > before.residentKb + allowed.residentKb);
}

// A loss grows in each of them, what settles late in the first one or two.
constexpr int kMoreStretches = 3;

}  // namespace

std::string Repeat(unsigned long rounds, const std::function<void(unsigned long)>& round,
                   int threads, const Allowed& allowed) {
    unsigned long done = 0;
    const auto goOnTo = [&](unsigned long end) {
        for (; done < end; ++done) round(done);
        return lookAtRest(threads);
    };
    Resources before = goOnTo(rounds / 10);
    Resources after = goOnTo(rounds);
    for (int more = 0; more < kMoreStretches && hasGrown(before, after, allowed); ++more) {
        before = after;
        after = goOnTo(done + rounds);
    }

    EXPECT_LE(after.heapBytes, before.heapBytes + allowed.heapBytes) << before << "\n" << after;
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_EQ(after.threads, before.threads);
    if (kHasMeaningfulResident) {
        EXPECT_LE(after.residentKb, before.residentKb + allowed.residentKb) << before << "\n"
                                                                            << after;
    }
    std::ostringstream words;
    words << std::showpos << after.heapBytes - before.heapBytes << " bytes allocated, ";
    if (kHasMeaningfulResident) words << after.residentKb - before.residentKb << " KB resident, ";
    words << after.descriptors - before.descriptors << " descriptors, "
          << after.threads - before.threads << " threads";
    return words.str();
}

}  // namespace oam::torture
