// Requests to the daemon: what a client's bytes are decoded to, and what its services make of it.
//
// The input's first line is the method ("Boards/GetBoard"), the rest the message. A session of "S"
// in it stands for one that is open. Whatever it holds there is an answer; a refusal by the daemon
// names its rule; and the next client gets what it asks for.
#include <google/protobuf/descriptor.h>
#include <google/protobuf/message.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>

#include "fuzz_target.h"
#include "oam/v1/alerts.pb.h"
#include "oam/v1/boards.pb.h"
#include "oam/v1/configuration.pb.h"
#include "oam/v1/host.pb.h"
#include "oam/v1/objects.pb.h"
#include "oam/v1/operations.pb.h"
#include "oam/v1/refusal.pb.h"
#include "oam/v1/sessions.pb.h"
#include "serving_daemon.h"

namespace {

namespace pb = google::protobuf;
using oam::fuzz::Require;

// What ends the service, takes the boards away that every input is to find, or makes ever more of
// them.
constexpr const char* kLeftOut[] = {"StartService", "StopService", "RestartService", "Import",
                                    "RollBack",     "DeleteBoard", "CreateBoard"};

constexpr std::chrono::milliseconds kLong = std::chrono::seconds(15);
// For what answers when there is news, or when an operation ends.
constexpr std::chrono::milliseconds kShort{20};

// Nothing when there is none that may be asked.
const pb::MethodDescriptor* methodOf(const std::string& name) {
    // So that all descriptors are in the program.
    static const bool isLinked = [] {
        (void)oam::v1::Alert::descriptor();
        (void)oam::v1::Board::descriptor();
        (void)oam::v1::ExportRequest::descriptor();
        (void)oam::v1::HostInfo::descriptor();
        (void)oam::v1::Keyword::descriptor();
        (void)oam::v1::Operation::descriptor();
        return true;
    }();
    (void)isLinked;
    const std::size_t slash = name.find('/');
    if (slash == name.npos) return nullptr;
    const auto* const service =
        pb::DescriptorPool::generated_pool()->FindServiceByName("oam.v1." + name.substr(0, slash));
    const auto* const method =
        service != nullptr ? service->FindMethodByName(name.substr(slash + 1)) : nullptr;
    const auto isMeant = [&](const char* other) { return method->name() == other; };
    if (method == nullptr || std::any_of(std::begin(kLeftOut), std::end(kLeftOut), isMeant))
        return nullptr;
    return method;
}

// The same bytes, but for the session.
std::string withSession(const pb::MethodDescriptor& method, const std::string& bytes) {
    const auto* const session = method.input_type()->FindFieldByName("session");
    if (session == nullptr) return bytes;
    const std::unique_ptr<pb::Message> message(
        pb::MessageFactory::generated_factory()->GetPrototype(method.input_type())->New());
    if (!message->ParseFromString(bytes)) return bytes;
    const pb::Reflection& reflection = *message->GetReflection();
    if (reflection.GetString(*message, session) != "S") return bytes;
    reflection.SetString(message.get(), session, oam::fuzz::ServingDaemon::Get().Session());
    return message->SerializeAsString();
}

void isAnswered(bool waits, const grpc::Status& status) {
    Require(waits || status.error_code() != grpc::StatusCode::DEADLINE_EXCEEDED,
            "every request is answered");
    Require(status.error_code() != grpc::StatusCode::UNAVAILABLE, "the daemon goes on serving");
    if (status.error_details().empty()) return;
    oam::v1::Refusal refusal;
    Require(refusal.ParseFromString(status.error_details()), "a refusal explains itself");
    Require(!refusal.rule().empty(), "a refusal names its rule");
}

// What somebody asks who does nothing wrong.
void servesOthers() {
    std::string answer;
    const auto status =
        oam::fuzz::ServingDaemon::Get().Ask("/oam.v1.Boards/ListBoards", "", kLong, &answer);
    oam::v1::ListBoardsResponse boards;
    Require(status.ok() && boards.ParseFromString(answer), "the next client is answered");
    constexpr int kBoards = 4;
    Require(boards.boards_size() == kBoards, "the boards are still there");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = oam::fuzz::AsText(data, size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    const auto* const method = methodOf(std::string(input.substr(0, end)));
    if (method == nullptr) return 0;
    const std::string bytes =
        withSession(*method, std::string(input.substr(std::min(end + 1, input.size()))));
    const bool waits = method->server_streaming() || method->name() == "WaitOperation";
    const std::string path = "/" + method->service()->full_name() + '/' + method->name();
    isAnswered(waits, oam::fuzz::ServingDaemon::Get().Ask(path, bytes, waits ? kShort : kLong));
    servesOthers();
    return 0;
}
