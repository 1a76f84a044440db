#include "journal/alert_journal.h"

#include <chrono>
#include <exception>
#include <string>
#include <utility>

namespace oam::server {

AlertJournal::AlertJournal(const AlertRing& ring, Journal& journal, UserOf userOf)
    : ring_(ring), journal_(journal), userOf_(std::move(userOf)) {
    thread_ = std::thread([this, position = ring.Newest()] { Work(position); });
}

AlertJournal::~AlertJournal() { thread_.join(); }

void AlertJournal::Work(std::uint64_t position) {
    while (ring_.WaitBehind(position)) {
        try {
            const AlertRing::Batch batch = ring_.Read(position, AlertRing::kMostAtOnce);
            if (batch.isGap)
                journal_.Say(Priority::kWarning,
                             "alerts behind number " + std::to_string(position) +
                                 " are missing here: more came than memory could keep");
            for (const auto& alert : batch.alerts)
                journal_.Alert(*alert, alert->operation.empty() ? "" : userOf_(alert->operation));
            position = batch.last;
        } catch (const std::exception&) {
            // No memory now.
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    }
}

}  // namespace oam::server
