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

}  // namespace

std::string Repeat(unsigned long rounds, const std::function<void(unsigned long)>& round,
                   int threads, const Allowed& allowed) {
    unsigned long done = 0;
    for (; done < rounds / 10; ++done) round(done);
    const Resources before = lookAtRest(threads);
    for (; done < rounds; ++done) round(done);
    const Resources after = lookAtRest(threads);

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
