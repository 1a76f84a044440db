// What a fuzz target is: one function that takes any bytes and ends the process when a promise does
// not hold of them.
//
// The same function runs under libFuzzer, which makes the bytes up, and under replay.cpp, which
// takes them from the files of the target's corpus.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace oam::fuzz {

inline std::string_view AsText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// Not assert: it holds in every build.
inline void Require(bool met, const char* promise) {
    if (met) return;
    std::fprintf(stderr, "promise broken: %s\n", promise);
    std::abort();
}

}  // namespace oam::fuzz
