// How many requests there were of each method and result, and how long they took. Any thread.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>

namespace oam::server {

class RequestCounts {
  public:
    static constexpr std::size_t kMethods = 200;
    static constexpr std::size_t kResults = 17;  // gRPC's status codes

    struct Method {
        std::array<std::uint64_t, kResults> results{};
        std::uint64_t underWay = 0;
        double seconds = 0;  // of those that have ended
    };

    // `method` is counted under "other" when there are too many.
    void Begin(const std::string& method) noexcept;
    void End(const std::string& method, int result, double seconds) noexcept;

    std::map<std::string, Method> All() const;

    // "OK", "NOT_FOUND"
    static const char* ResultName(std::size_t result);

  private:
    Method& Of(const std::string& method);

    mutable std::mutex mutex_;
    std::map<std::string, Method> methods_;
};

}  // namespace oam::server
