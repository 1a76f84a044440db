// Waiting for a condition that another process brings about.
#pragma once

#include <chrono>
#include <thread>

namespace oam::test {

// False when it has not come about within the limit.
template <class Condition>
bool Await(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(60)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

}  // namespace oam::test
