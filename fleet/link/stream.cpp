#include "fleet/link/stream.h"

#include <charconv>
#include <ctime>

namespace oam::fleet {
namespace {

constexpr auto kAnswerLimit = std::chrono::seconds(5);
constexpr std::int64_t kPublishLimit = 5000;  // milliseconds

std::uint64_t numberOf(const std::string& text) {
    std::uint64_t number = 0;
    (void)std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

// "2026-03-01T12:00:00.123456789Z"
std::int64_t timeOf(const std::string& text) {
    std::tm parts{};
    const char* const rest = strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
    if (rest == nullptr) return 0;
    constexpr std::int64_t kSecond = 1'000'000'000;
    std::int64_t nanos = 0, unit = kSecond;
    for (const char* digit = *rest == '.' ? rest + 1 : rest; *digit >= '0' && *digit <= '9';
         ++digit)
        nanos += (*digit - '0') * (unit /= 10);
    return timegm(&parts) * kSecond + nanos;
}

}  // namespace

std::optional<StreamFacts> LookAtStream(Link& link, const std::string& stream) {
    jsStreamInfo* info = nullptr;
    jsErrCode error = {};
    const natsStatus status =
        js_GetStreamInfo(&info, link.Streams(), stream.c_str(), nullptr, &error);
    const StreamInfoHandle owned(info);
    if (status == NATS_NOT_FOUND) return std::nullopt;
    Require(status, "cannot look at the stream " + stream, error);
    return StreamFacts{info->Created, info->State.Msgs};
}

std::optional<Stored> LastWith(Link& link, const std::string& stream, const std::string& subject) {
    const auto answer =
        link.Request(link.StreamApi() + "DIRECT.GET." + stream + '.' + subject, "", kAnswerLimit);
    const std::string status = HeaderOf(*answer, "Status");
    if (status == "404") return std::nullopt;
    if (!status.empty())
        throw EngineFailure("cannot read " + subject + " in the stream " + stream + " (" + status +
                                ' ' + HeaderOf(*answer, "Description") + ')',
                            NATS_ERR);
    return Stored{HeaderOf(*answer, "Nats-Subject"), DataOf(*answer),
                  numberOf(HeaderOf(*answer, "Nats-Sequence")),
                  timeOf(HeaderOf(*answer, "Nats-Time-Stamp"))};
}

Acknowledged PublishBehind(Link& link, const std::string& stream, const Publishing& how,
                           const std::string& data) {
    jsPubOptions options;
    Require(jsPubOptions_Init(&options), "cannot publish");
    options.MaxWait = kPublishLimit;
    options.MsgId = how.id.c_str();
    options.ExpectStream = stream.c_str();
    options.ExpectLastSubjectSeq = how.behind;
    options.ExpectNoMessage = how.behind == 0;
    jsPubAck* told = nullptr;
    jsErrCode error = {};
    const natsStatus status = js_Publish(&told, link.Streams(), how.subject.c_str(), data.data(),
                                         static_cast<int>(data.size()), &options, &error);
    const PublishAckHandle owned(told);
    if (error == JSStreamWrongLastSequenceErr)
        throw OutOfStep("somebody else has published to " + how.subject, status, error);
    Require(status, "cannot publish to " + how.subject, error);
    return {told->Sequence, told->Duplicate};
}

}  // namespace oam::fleet
