#include "fleet/agent/command_answer.h"

#include "fleet/command.h"
#include "mirror/mirror.h"
#include "wire/daemon_channel.h"

namespace oam::fleet {
namespace {

std::string textOr(const char* text) { return text == nullptr ? "" : text; }

grpc::Status tooLarge(std::size_t size, std::size_t most) {
    v1::Refusal refusal;
    refusal.set_party(v1::Refusal::PARTY_DAEMON);
    refusal.set_rule("the answer has " + std::to_string(size) +
                     " bytes, and the fleet's server takes " + std::to_string(most));
    refusal.set_remedy("ask the host itself, or let the server take larger ones (max_payload)");
    return {grpc::StatusCode::RESOURCE_EXHAUSTED, refusal.rule(), refusal.SerializeAsString()};
}

}  // namespace

CommandAnswer::CommandAnswer(std::shared_ptr<Link> link, natsMsg& request)
    : link_(std::move(link)),
      subject_(natsMsg_GetSubject(&request)),
      reply_(textOr(natsMsg_GetReply(&request))),
      data_(DataOf(request)),
      isProtobuf_(HeaderOf(request, kContentHeader) == kProtobuf),
      hasProgress_(HeaderOf(request, kProgressHeader) == kYes) {}

void CommandAnswer::Taken() {
    if (hasProgress_) Send(kTaken, "");
}

void CommandAnswer::Working() {
    if (!hasProgress_) return;
    {
        const std::lock_guard hold(mutex_);
        if (std::chrono::steady_clock::now() - last_ < kWorkingPeriod) return;
    }
    Send(kWorking, "");
}

std::string CommandAnswer::Told(const console::Route& route, const std::string& bytes) const {
    return isProtobuf_ ? bytes : console::AnswerJson(route, bytes).dump();
}

void CommandAnswer::Message(const console::Route& route, const std::string& bytes) {
    Send(kMessage, Told(route, bytes));
}

void CommandAnswer::End(const console::Route& route, const std::string& bytes) {
    const std::string told = bytes.empty() && isProtobuf_ ? bytes : Told(route, bytes);
    if (told.size() >= link_->LargestMessage())
        return Refuse(tooLarge(told.size(), link_->LargestMessage()));
    Send(kEnd, told, "0");
}

void CommandAnswer::Refuse(const grpc::Status& status) {
    std::string told;
    if (!isProtobuf_) {
        told = console::RefusalJson(status).dump();
    } else if (const auto refusal = wire::RefusalIn(status)) {
        told = refusal->SerializeAsString();
    } else {
        v1::Refusal own;
        own.set_party(v1::Refusal::PARTY_DAEMON);
        own.set_rule("the host's daemon does not answer: " + status.error_message());
        told = own.SerializeAsString();
    }
    Send(kEnd, told, std::to_string(static_cast<int>(status.error_code())));
}

void CommandAnswer::Send(const char* kind, const std::string& data, const std::string& status) {
    const std::lock_guard hold(mutex_);
    if (isOver_ || reply_.empty()) return;
    isOver_ = kind == kEnd;
    last_ = std::chrono::steady_clock::now();
    natsMsg* made = nullptr;
    if (natsMsg_Create(&made, reply_.c_str(), nullptr, data.data(),
                       static_cast<int>(data.size())) != NATS_OK)
        return;
    const MessageHandle message(made);
    if (natsMsgHeader_Set(made, kAnswerHeader, kind) != NATS_OK) return;
    if (!status.empty() && natsMsgHeader_Set(made, kStatusHeader, status.c_str()) != NATS_OK)
        return;
    // A link that is gone has nobody at its other end who waits.
    (void)natsConnection_PublishMsg(link_->Get(), made);
}

}  // namespace oam::fleet
