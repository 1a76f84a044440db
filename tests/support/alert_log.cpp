#include "support/alert_log.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <ios>

namespace oam::test {

namespace {

std::atomic<AlertLog*> current{nullptr};

Said saidBy(const Alert& alert) { return {alert.code, alert.severity, alert.source, alert.text}; }

}  // namespace

std::ostream& operator<<(std::ostream& out, const Said& said) {
    const char* name = _oamGetText(said.code);
    if (name != nullptr) {
        out << name;
    } else {
        out << "0x" << std::hex << said.code << std::dec;
    }
    return out << "(" << said.severity << ") \"" << said.source << "\": \"" << said.text << "\"";
}

std::ostream& operator<<(std::ostream& out, const Alert& alert) {
    return out << "client 0x" << std::hex << alert.client << std::dec << " " << saidBy(alert);
}

AlertLog::AlertLog() { Install(); }

AlertLog::~AlertLog() {
    (void)_oamAlertRegisterCallback(nullptr);
    current = nullptr;
    const std::lock_guard hold(mutex_);  // who is adding an alert has added it
}

void AlertLog::Install() {
    current = this;
    EXPECT_EQ(_oamAlertRegisterCallback(&AlertLog::Receive), OAM_SUCCESS);
}

void AlertLog::AnswerWith(std::function<unsigned(const Alert&)> answer) {
    std::lock_guard hold(mutex_);
    answer_ = std::move(answer);
}

unsigned AlertLog::Receive(unsigned long client, const oam_msg_tag* message) {
    AlertLog* log = current;
    return log == nullptr ? 0 : log->Add(client, message);
}

unsigned AlertLog::Add(unsigned long client, const oam_msg_tag* message) {
    Alert alert;
    alert.client = client;
    alert.code = message->code;
    alert.severity = message->severity;
    alert.size = message->size;
    alert.sourceOffset = message->sourceOffset;
    alert.textOffset = message->textOffset;
    alert.source = oamMessageSource(message);
    alert.text = oamMessageText(message);
    alert.raw.assign(reinterpret_cast<const char*>(message), message->size);
    alert.thread = std::this_thread::get_id();
    std::function<unsigned(const Alert&)> answer;
    {
        // Told under the lock: whoever sees it may take the log down next.
        std::lock_guard hold(mutex_);
        alerts_.push_back(alert);
        answer = answer_;
        arrived_.notify_all();
    }
    return answer ? answer(alert) : 0;
}

std::vector<Alert> AlertLog::All() const {
    std::lock_guard hold(mutex_);
    return alerts_;
}

std::vector<Alert> AlertLog::For(unsigned long client) const {
    std::vector<Alert> found;
    for (const Alert& alert : All()) {
        if (alert.client == client) found.push_back(alert);
    }
    return found;
}

std::vector<Said> AlertLog::Heard() const {
    std::vector<Said> heard;
    for (const Alert& alert : For(kServer)) heard.push_back(saidBy(alert));
    return heard;
}

std::vector<Said> AlertLog::Heard(unsigned code) const {
    std::vector<Said> heard = Heard();
    std::erase_if(heard, [code](const Said& said) { return said.code != code; });
    return heard;
}

std::vector<Said> AlertLog::HeardFrom(const std::string& source) const {
    std::vector<Said> heard = Heard();
    std::erase_if(heard, [&source](const Said& said) { return said.source != source; });
    return heard;
}

void AlertLog::Clear() {
    std::lock_guard hold(mutex_);
    alerts_.clear();
}

bool AlertLog::WaitFor(const std::function<bool(const std::vector<Alert>&)>& predicate,
                       std::chrono::milliseconds limit) const {
    std::unique_lock hold(mutex_);
    return arrived_.wait_for(hold, limit, [&] { return predicate(alerts_); });
}

bool AlertLog::WaitForCode(unsigned code, size_t count, const std::string& source) const {
    return WaitFor([&](const std::vector<Alert>& alerts) {
        size_t seen = 0;
        for (const Alert& alert : alerts) {
            if (alert.client != kServer || alert.code != code) continue;
            if (source.empty() || alert.source == source) ++seen;
        }
        return seen >= count;
    });
}

std::string MakeRecord(unsigned code, unsigned severity, const std::string& source,
                       const std::string& text) {
    oam_msg_tag header{};
    header.size = static_cast<uint32_t>(sizeof header + source.size() + text.size() + 2);
    header.code = code;
    header.severity = severity;
    header.sourceOffset = sizeof header;
    header.textOffset = static_cast<uint32_t>(sizeof header + source.size() + 1);
    std::string record(header.size, '\0');
    std::memcpy(record.data(), &header, sizeof header);
    std::memcpy(record.data() + header.sourceOffset, source.data(), source.size());
    std::memcpy(record.data() + header.textOffset, text.data(), text.size());
    return record;
}

oam_result Raise(unsigned code, unsigned severity, const std::string& source,
                 const std::string& text) {
    const std::string record = MakeRecord(code, severity, source, text);
    return _oamAlertNotify(AsMessage(record));
}

}  // namespace oam::test
