#include "alerts.h"

#include <numeric>
#include <utility>

namespace oam::server {

StoredAlert AlertOf(const std::string& text, std::uint32_t code, const std::string& source,
                    std::uint32_t severity) {
    StoredAlert alert;
    alert.time = std::chrono::system_clock::now();
    alert.code = code;
    alert.severity = severity;
    alert.source = source;
    alert.text = text;
    return alert;
}

StoredAlert OutcomeOf(std::uint32_t code, const std::string& board, const std::string& text,
                      std::uint32_t severity) {
    return AlertOf(text, code, board, severity);
}

std::shared_ptr<const StoredAlert> Numbered(std::uint64_t sequence, StoredAlert alert) {
    alert.sequence = sequence;
    return std::make_shared<const StoredAlert>(std::move(alert));
}

std::vector<std::shared_ptr<const StoredAlert>> NumberedAlerts(std::uint64_t first,
                                                               std::uint64_t last) {
    std::vector<std::shared_ptr<const StoredAlert>> alerts;
    for (std::uint64_t n = first; n <= last; ++n)
        alerts.push_back(Numbered(n, AlertOf("alert " + std::to_string(n))));
    return alerts;
}

std::vector<std::uint64_t> NumbersOf(const AlertRing::Batch& batch) {
    std::vector<std::uint64_t> numbers;
    for (const auto& alert : batch.alerts) numbers.push_back(alert->sequence);
    return numbers;
}

std::vector<std::uint64_t> NumbersOf(const AlertBook::Page& page) {
    std::vector<std::uint64_t> numbers;
    for (const StoredAlert& alert : page.alerts) numbers.push_back(alert.sequence);
    return numbers;
}

std::vector<std::uint64_t> Range(std::uint64_t first, std::uint64_t last) {
    std::vector<std::uint64_t> numbers(last - first + 1);
    std::iota(numbers.begin(), numbers.end(), first);
    return numbers;
}

}  // namespace oam::server
