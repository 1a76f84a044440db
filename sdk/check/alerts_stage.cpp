// Alerts: records of every kind, from several threads.
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "judged_entries.h"
#include "service.h"
#include "stages.h"

namespace oam::check {
namespace {

class AlertRecord {
  public:
    AlertRecord(unsigned int code, unsigned int severity, const std::string& source,
                const std::string& text, unsigned int sizeBeyond = 0)
        : bytes_(sizeof(oam_msg_tag) + source.size() + text.size() + 2) {
        oam_msg_tag header{};
        header.size = static_cast<uint32_t>(bytes_.size()) + sizeBeyond;
        header.code = code;
        header.severity = severity;
        header.sourceOffset = sizeof header;
        header.textOffset = static_cast<uint32_t>(sizeof header + source.size() + 1);
        header.reserved = 0xDEADBEEF;  // it means nothing
        std::memcpy(bytes_.data(), &header, sizeof header);
        std::memcpy(bytes_.data() + header.sourceOffset, source.c_str(), source.size() + 1);
        std::memcpy(bytes_.data() + header.textOffset, text.c_str(), text.size() + 1);
    }

    void Raise() const {
        (void)Service().AlertNotify(reinterpret_cast<const oam_msg_tag*>(bytes_.data()));
    }

  private:
    std::vector<char> bytes_;
};

constexpr unsigned int kEvents[] = {
    OAMEVN_ALERT,
    OAMEVN_CREATED,
    OAMEVN_DELETED,
    OAMEVN_RENAMED,
    OAMEVN_TRACE,
    OAMEVN_MODIFIED,
    OAMEVN_BOARD_DEAD,
    OAMEVN_FAN_RPM_WARNING,
    OAMEVN_TEMPERATURE_ALERT,
    OAMEVN_STARTBOARD_DONE,
    OAMEVN_STOPBOARD_DONE,
    OAMEVN_STOPBOARD_REQ,
    0x5FFFFFFF,
};

void raiseEvery(const std::string& source) {
    for (const unsigned int event : kEvents) {
        AlertRecord(event, OAM_INFORMATION, source, "").Raise();
        AlertRecord(event, 7, source, "%s%n %s%n").Raise();
        // A text that was cut: the size counts what is no longer there.
        AlertRecord(event, OAM_ERROR, source, std::string(255, 'x'), 45).Raise();
    }
}

void raiseFromManyThreads() {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 50; ++round)
                AlertRecord(OAMEVN_ALERT, OAM_INFORMATION, "check", "concurrent").Raise();
        });
    for (auto& thread : threads) thread.join();
}

}  // namespace

void CheckAlerts(Bench& bench) {
    if (!bench.Start()) return;
    (void)bench.CreateBoards();
    for (const auto& name : bench.Objects())
        if (bench.Next()) raiseEvery(name);
    if (bench.Next()) raiseEvery("");
    if (bench.Next()) raiseEvery(std::string(500, 's'));
    if (bench.Next()) raiseFromManyThreads();
    bench.Stop();
}

}  // namespace oam::check
