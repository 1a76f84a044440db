// oam fleet alerts: those of all hosts as they come, or from a moment on.
#include <charconv>
#include <chrono>
#include <ctime>

#include "arguments.h"
#include "cli/fleet/fleet_command.h"
#include "cli/fleet/host_pattern.h"
#include "console.h"
#include "fleet/link/link.h"
#include "fleet/names.h"
#include "fleet/records.h"
#include "foreign_text.h"
#include "interruption.h"
#include "mirror/text_json.h"
#include "oam/entry.h"

namespace oam::fleet {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
constexpr std::int64_t kLook = 200;  // milliseconds
constexpr auto kPause = std::chrono::seconds(1);

using MetaData = std::unique_ptr<jsMsgMetaData, Destroy<jsMsgMetaData_Destroy>>;

std::int64_t nanosNow() {
    return std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count();
}

// "90s", "10m", "2h", "3d" before now, or "2026-03-01T12:00:00Z"; nanoseconds since 1970.
std::int64_t momentOf(const std::string& text) {
    std::int64_t count = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, count);
    if (error == std::errc() && rest + 1 == end && count >= 0) {
        constexpr std::pair<char, std::int64_t> kUnits[] = {
            {'s', 1}, {'m', 60}, {'h', 3600}, {'d', 86400}};
        for (const auto& [letter, seconds] : kUnits)
            if (*rest == letter && count < 100'000'000)
                return nanosNow() - count * seconds * kSecond;
    }
    std::tm parts{};
    const char* const behind = strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
    if (behind != nullptr && std::string_view(behind) == "Z") return timegm(&parts) * kSecond;
    throw UsageError("no moment: " + Quoted(text) +
                     "; it is \"10m\" (before now; s, m, h, d) or \"2026-03-01T12:00:00Z\"");
}

std::string memberText(const Json& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end()) return {};
    return console::TextFromJson(*found).value_or("");
}

std::string severityText(const Json& alert) {
    const auto found = alert.find("severity");
    unsigned severity = OAM_INFORMATION;
    if (found != alert.end() && found->is_number_unsigned()) severity = found->get<unsigned>();
    if (severity == OAM_INFORMATION) return "info   ";
    return severity == OAM_WARNING ? "warning" : "error  ";
}

std::string lineOf(const AlertRecord& record) {
    const std::string host = Shown(record.host);
    switch (record.kind) {
        case AlertRecord::Kind::kGap:
            return host + "  alerts " + std::to_string(record.first) + " to " +
                   std::to_string(record.sequence) + " are not kept any more";
        case AlertRecord::Kind::kRestart:
            return host + "  counts its alerts anew";
        case AlertRecord::Kind::kAlert:
            break;
    }
    std::string text = memberText(record.alert, "text");
    text.erase(text.find_last_not_of(" \n") + 1);
    std::string event = memberText(record.alert, "codeName");
    const auto code = record.alert.find("code");
    if (event.empty() && code != record.alert.end() && code->is_number_unsigned())
        event = HexText(code->get<unsigned>());
    return memberText(record.alert, "time") + "  " + host + "  " + severityText(record.alert) +
           "  " + Shown(event) + "  " + Quoted(memberText(record.alert, "source")) + "  " +
           Shown(text);
}

class AlertsCommand : public FleetCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Optional("--since", &since_,
                           "Begin with those that came then: \"10m\" ago, or a time", "MOMENT");
        arguments.Flag("--kept", &onlyKept_, "End when all that is kept has been told");
        arguments.Number("--count", &count_, {1, 0xffffffff}, "End after N alerts");
        arguments.Number("--for", &seconds_, {1, 100000000}, "End after N seconds");
    }

    void CheckArguments() override {
        if (since_) from_ = momentOf(*since_);
        if (onlyKept_ && !since_) from_ = 1;
    }

    ExitStatus Run(FleetContext& context) override {
        const Interruption interruption;
        interruption_ = &interruption;
        if (seconds_) end_ = std::chrono::steady_clock::now() + std::chrono::seconds(*seconds_);
        pattern_.emplace(context.options.hosts);
        // A server that goes away is looked for, and the next record follows the last one.
        for (bool isFirst = true; !IsOver(); isFirst = false) {
            try {
                const auto link = Connect(context.options);
                Follow(*link, context.console);
            } catch (const EngineFailure& failure) {
                if (isFirst || failure.Status() != kNoDaemon) throw;
                const auto again = std::chrono::steady_clock::now() + kPause;
                while (!IsOver() && std::chrono::steady_clock::now() < again) nats_Sleep(kLook);
            }
        }
        return interruption.IsRequested() ? kInterrupted : kDone;
    }

  private:
    bool IsOver() const {
        return isDone_ || interruption_->IsRequested() || (count_ && seen_ >= *count_) ||
               (end_ && std::chrono::steady_clock::now() >= *end_);
    }

    SubscriptionHandle Subscribe(Link& link) const {
        const std::string one = pattern_->One();
        const std::string subject = one.empty() ? kAlertSubjects : AlertSubject(one);
        jsSubOptions options;
        Require(jsSubOptions_Init(&options), "cannot follow alerts");
        options.Stream = kAlertStream;
        options.Ordered = true;
        options.Config.DeliverPolicy = js_DeliverNew;
        if (passed_ != 0) {
            options.Config.DeliverPolicy = js_DeliverByStartSequence;
            options.Config.OptStartSeq = passed_ + 1;
        } else if (from_ == 1) {
            options.Config.DeliverPolicy = js_DeliverAll;
        } else if (from_ != 0) {
            options.Config.DeliverPolicy = js_DeliverByStartTime;
            options.Config.OptStartTime = from_;
        }
        natsSubscription* made = nullptr;
        jsErrCode error = {};
        const natsStatus status =
            js_SubscribeSync(&made, link.Streams(), subject.c_str(), nullptr, &options, &error);
        SubscriptionHandle subscription(made);
        Require(status, "cannot follow the stream OAM_ALERTS", error);
        return subscription;
    }

    void Follow(Link& link, Console& console) {
        const auto subscription = Subscribe(link);
        if (onlyKept_ && IsNothingKept(*subscription)) isDone_ = true;
        while (!IsOver()) {
            natsMsg* next = nullptr;
            const natsStatus status = natsSubscription_NextMsg(&next, subscription.get(), kLook);
            if (status == NATS_TIMEOUT) continue;
            Require(status, "the link to the fleet is lost");
            const MessageHandle message(next);
            jsMsgMetaData* told = nullptr;
            Require(natsMsg_GetMetaData(&told, next), "a record cannot be read");
            const MetaData meta(told);
            passed_ = told->Sequence.Stream;
            if (onlyKept_ && told->NumPending == 0) isDone_ = true;
            Tell(console, DataOf(*next));
        }
    }

    static bool IsNothingKept(natsSubscription& subscription) {
        jsConsumerInfo* info = nullptr;
        jsErrCode error = {};
        Require(natsSubscription_GetConsumerInfo(&info, &subscription, nullptr, &error),
                "cannot follow the stream OAM_ALERTS", error);
        const ConsumerInfoHandle owned(info);
        return info->NumPending + info->Delivered.Consumer == 0;
    }

    void Tell(Console& console, const std::string& data) {
        try {
            const AlertRecord record = ReadAlert(data);
            if (!pattern_->Matches(record.host)) return;
            ++seen_;
            if (!console.IsJson()) return console.Stream(lineOf(record));
            Json json = record.alert;
            json.erase("schema");
            console.StreamJson(json);
        } catch (const BadRecord& error) {
            console.Note(std::string("a record cannot be read: ") + error.what());
        }
    }

    std::optional<std::string> since_;
    std::int64_t from_ = 0;  // nanoseconds since 1970; 0: from now on, 1: all
    bool onlyKept_ = false;
    std::optional<unsigned> count_, seconds_;
    const Interruption* interruption_ = nullptr;
    std::optional<HostPattern> pattern_;
    std::optional<std::chrono::steady_clock::time_point> end_;
    std::uint64_t passed_ = 0;  // the stream's sequence of the last record
    unsigned seen_ = 0;
    bool isDone_ = false;
};

constexpr FleetRow kRows[] = {
    {"alerts", "Alerts of all hosts, as they come or from a moment on",
     "oam fleet alerts\noam fleet alerts --since 2h --kept\n"
     "oam fleet alerts --since 2026-03-01T12:00:00Z --host rack-7-1 --json",
     MakeFleetCommand<AlertsCommand>},
};

}  // namespace

std::span<const FleetRow> AlertsCommands() { return kRows; }

}  // namespace oam::fleet
