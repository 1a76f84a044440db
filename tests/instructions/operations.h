// The operations that are counted, and how often each is made.
#pragma once

namespace oam::bench {

constexpr int kWarmUp = 3;
constexpr int kTimes = 10;

constexpr const char* kReadChanged = "read of a changed object";
constexpr const char* kReadUnchanged = "read of an unchanged object";
constexpr const char* kKeyword = "keyword of an open object";
constexpr const char* kCommit = "commit";
constexpr const char* kAlert = "alert with log and ten callbacks";
constexpr const char* kShadow = "shadow look-up";

}  // namespace oam::bench
