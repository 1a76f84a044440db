#include "metrics/request_counts.h"

#include <exception>

namespace oam::server {
namespace {

constexpr const char* kResultNames[RequestCounts::kResults] = {
    "OK",
    "CANCELLED",
    "UNKNOWN",
    "INVALID_ARGUMENT",
    "DEADLINE_EXCEEDED",
    "NOT_FOUND",
    "ALREADY_EXISTS",
    "PERMISSION_DENIED",
    "RESOURCE_EXHAUSTED",
    "FAILED_PRECONDITION",
    "ABORTED",
    "OUT_OF_RANGE",
    "UNIMPLEMENTED",
    "INTERNAL",
    "UNAVAILABLE",
    "DATA_LOSS",
    "UNAUTHENTICATED",
};
constexpr std::size_t kUnknown = 2;

}  // namespace

RequestCounts::Method& RequestCounts::Of(const std::string& method) {
    const auto found = methods_.find(method);
    if (found != methods_.end()) return found->second;
    return methods_[methods_.size() < kMethods ? method : "other"];
}

// Without memory for a new row a request is not counted, and served all the same.
void RequestCounts::Begin(const std::string& method) noexcept try {
    const std::lock_guard hold(mutex_);
    ++Of(method).underWay;
} catch (const std::exception&) {
}

void RequestCounts::End(const std::string& method, int result, double seconds) noexcept try {
    const std::lock_guard hold(mutex_);
    Method& of = Of(method);
    const auto number = static_cast<std::size_t>(result);
    ++of.results[number < kResults ? number : kUnknown];
    if (of.underWay != 0) --of.underWay;
    of.seconds += seconds;
} catch (const std::exception&) {
}

std::map<std::string, RequestCounts::Method> RequestCounts::All() const {
    const std::lock_guard hold(mutex_);
    return methods_;
}

const char* RequestCounts::ResultName(std::size_t result) { return kResultNames[result]; }

}  // namespace oam::server
