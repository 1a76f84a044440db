// Alerts for the tests, and how they are looked at.
#pragma once

#include <string>
#include <vector>

#include "alerts/alert_book.h"
#include "alerts/alert_ring.h"
#include "alerts/stored_alert.h"
#include "oam/codes.h"
#include "oam/message.h"

namespace oam::server {

StoredAlert AlertOf(const std::string& text, std::uint32_t code = OAMEVN_ALERT,
                    const std::string& source = "Board 1",
                    std::uint32_t severity = OAM_INFORMATION);

// The outcome of an operation, as the service tells it.
StoredAlert OutcomeOf(std::uint32_t code, const std::string& board, const std::string& text,
                      std::uint32_t severity = OAM_INFORMATION);

// For AlertBook::Write.
std::shared_ptr<const StoredAlert> Numbered(std::uint64_t sequence, StoredAlert alert);
// Alerts with the numbers `first` to `last`.
std::vector<std::shared_ptr<const StoredAlert>> NumberedAlerts(std::uint64_t first,
                                                               std::uint64_t last);

std::vector<std::uint64_t> NumbersOf(const AlertRing::Batch& batch);
std::vector<std::uint64_t> NumbersOf(const AlertBook::Page& page);

// 1, 2, ... as numbers of alerts.
std::vector<std::uint64_t> Range(std::uint64_t first, std::uint64_t last);

}  // namespace oam::server
