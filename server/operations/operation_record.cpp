#include "operations/operation_record.h"

#include <charconv>
#include <system_error>

namespace oam::server {

namespace {

std::uint64_t counted(std::string_view digits) {
    std::uint64_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, number);
    const bool isOurs = error == std::errc() && rest == end && digits.front() != '0';
    return isOurs ? number : 0;
}

}  // namespace

std::optional<OperationId> OperationId::Parse(std::string_view text) noexcept {
    const std::size_t dash = text.find('-');
    if (dash == std::string_view::npos) return std::nullopt;
    const OperationId id{counted(text.substr(0, dash)), counted(text.substr(dash + 1))};
    if (id.start == 0 || id.n == 0) return std::nullopt;
    return id;
}

std::string OperationId::Text() const { return std::to_string(start) + '-' + std::to_string(n); }

}  // namespace oam::server
