#include "fleet/link/bucket.h"

#include <chrono>

#include "fleet/names.h"

namespace oam::fleet {
namespace {

constexpr std::int64_t kLimit = 5000;  // milliseconds
// A value with this header stands for none.
constexpr const char* kOperation = "KV-Operation";

using MetaData = std::unique_ptr<jsMsgMetaData, Destroy<jsMsgMetaData_Destroy>>;

}  // namespace

Bucket::Bucket(Link& link, std::string name) : link_(link), name_(std::move(name)) {}

// A leaf server lets a bucket's subjects pass only as part of its domain's.
std::string Bucket::Target(const std::string& key) const {
    const std::string subject = BucketSubject(name_, key);
    return link_.HasDomain() ? link_.StreamApi() + subject : subject;
}

void Bucket::Put(const std::string& key, const std::string& value) {
    const std::string subject = Target(key);
    jsPubOptions options;
    Require(jsPubOptions_Init(&options), "cannot publish");
    options.MaxWait = kLimit;
    jsPubAck* told = nullptr;
    jsErrCode error = {};
    const natsStatus status = js_Publish(&told, link_.Streams(), subject.c_str(), value.data(),
                                         static_cast<int>(value.size()), &options, &error);
    const PublishAckHandle owned(told);
    Require(status, "cannot put " + subject, error);
}

void Bucket::Say(const std::string& key, const std::string& value) {
    link_.Publish(Target(key), value);
}

void Bucket::Remove(const std::string& key) {
    const std::string subject = Target(key);
    natsMsg* made = nullptr;
    Require(natsMsg_Create(&made, subject.c_str(), nullptr, nullptr, 0),
            "cannot remove " + subject);
    const MessageHandle message(made);
    // Nothing of it stays, not even what it was.
    Require(natsMsgHeader_Set(made, kOperation, "PURGE"), "cannot remove " + subject);
    Require(natsMsgHeader_Set(made, "Nats-Rollup", "sub"), "cannot remove " + subject);
    jsErrCode error = {};
    jsPubAck* told = nullptr;
    const natsStatus status = js_PublishMsg(&told, link_.Streams(), made, nullptr, &error);
    const PublishAckHandle owned(told);
    Require(status, "cannot remove " + subject, error);
}

std::optional<Stored> Bucket::Get(const std::string& key) {
    auto stored = LastWith(link_, BucketStream(name_), BucketSubject(name_, key));
    // What stands for a removed key has no data.
    if (stored && stored->data.empty()) return std::nullopt;
    return stored;
}

Bucket::Content Bucket::ReadAll() {
    const std::string what = "cannot read the bucket " + name_;
    const std::string stream = BucketStream(name_);
    const std::string subjects = BucketSubject(name_, ">");
    jsSubOptions options;
    Require(jsSubOptions_Init(&options), what);
    options.Stream = stream.c_str();
    options.Ordered = true;
    options.Config.DeliverPolicy = js_DeliverLastPerSubject;
    natsSubscription* made = nullptr;
    jsErrCode error = {};
    const natsStatus status =
        js_SubscribeSync(&made, link_.Streams(), subjects.c_str(), nullptr, &options, &error);
    const SubscriptionHandle subscription(made);
    if (error == JSStreamNotFoundErr)
        throw Failure("there is no bucket " + name_, "`oam fleet init` makes it", kNotFound);
    Require(status, what, error);
    jsConsumerInfo* info = nullptr;
    const auto asked = std::chrono::steady_clock::now();
    Require(natsSubscription_GetConsumerInfo(&info, made, nullptr, &error), what, error);
    const ConsumerInfoHandle owned(info);
    Content content;
    std::uint64_t left = info->NumPending + info->Delivered.Consumer;
    while (left > 0) {
        natsMsg* next = nullptr;
        Require(natsSubscription_NextMsg(&next, made, kLimit), what);
        const MessageHandle message(next);
        jsMsgMetaData* told = nullptr;
        Require(natsMsg_GetMetaData(&told, next), what);
        const MetaData meta(told);
        left = told->NumPending;
        if (!HeaderOf(*next, kOperation).empty()) continue;
        content.values.push_back(
            {natsMsg_GetSubject(next), DataOf(*next), told->Sequence.Stream, told->Timestamp});
    }
    // The consumer is as old as our question.
    content.now =
        info->Created + std::chrono::nanoseconds(std::chrono::steady_clock::now() - asked).count();
    return content;
}

std::string Bucket::KeyOf(const Stored& value) const {
    return value.subject.substr(BucketSubject(name_, "").size());
}

}  // namespace oam::fleet
