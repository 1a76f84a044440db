#include "strange_requests.h"

#include <google/protobuf/descriptor.h>
#include <google/protobuf/message.h>

#include <memory>

#include "daemon_test.h"

namespace oam::torture {
namespace {

namespace pb = google::protobuf;
using Field = pb::FieldDescriptor;

constexpr const char* kServices[] = {"Alerts",  "Boards",     "Configuration", "Host",
                                     "Objects", "Operations", "Sessions"};
// What would end the service for the others, or take their boards away: who may do that may.
constexpr const char* kLeftOut[] = {"StartService", "StopService", "RestartService",
                                    "Import",       "RollBack",    "DeleteBoard"};

const char* const kTexts[] = {
    "",       "Number",   "Driver.BoardId", "Supervisor",   "Boards[0]", "Boards[99999999999]",
    "%s%n%x", "\xff\xfe", "\xc3\x28",       "\xed\xa0\x80", "a<b>\\c",   "../../etc/passwd",
    "sim.bpi"};

bool isLeftOut(const std::string& method) {
    for (const char* name : kLeftOut)
        if (method == name) return true;
    return false;
}

}  // namespace

StrangeRequests::StrangeRequests(unsigned long seed, std::vector<std::string> names)
    : random_(seed), names_(std::move(names)) {
    // So that their descriptors are in the program.
    (void)v1::HostInfo::descriptor();
    for (const char* service : kServices) {
        const auto* const found = pb::DescriptorPool::generated_pool()->FindServiceByName(
            std::string("oam.v1.") + service);
        EXPECT_NE(found, nullptr) << service;
        for (int i = 0; found != nullptr && i < found->method_count(); ++i)
            if (!isLeftOut(found->method(i)->name())) methods_.push_back(found->method(i));
    }
}

StrangeRequests::Request StrangeRequests::Next() {
    const auto* const method = methods_[random_() % methods_.size()];
    Request request{"/" + method->service()->full_name() + "/" + method->name(),
                    method->server_streaming(),
                    {}};
    if (random_() % 8 == 0) {
        request.bytes.resize(random_() % 300);
        for (char& byte : request.bytes) byte = static_cast<char>(random_());
        return request;
    }
    const std::unique_ptr<pb::Message> message(
        pb::MessageFactory::generated_factory()->GetPrototype(method->input_type())->New());
    Fill(message.get(), 0);
    request.bytes = message->SerializeAsString();
    if (random_() % 8 == 0) request.bytes.resize(random_() % (request.bytes.size() + 1));
    if (random_() % 8 == 0 && !request.bytes.empty())
        request.bytes[random_() % request.bytes.size()] = static_cast<char>(random_());
    return request;
}

std::string StrangeRequests::Text() {
    switch (random_() % 6) {
        case 0: {
            std::string text(random_() % 200, '\0');
            for (char& byte : text) byte = static_cast<char>(random_());
            return text;
        }
        case 1:
            return std::string(random_() % 100000, 'x');
        case 2:
            return kTexts[random_() % std::size(kTexts)];
        default:
            return names_[random_() % names_.size()];
    }
}

std::uint64_t StrangeRequests::Number() {
    switch (random_() % 4) {
        case 0:
            return random_();
        case 1:
            return std::uint64_t{1} << (random_() % 64);
        case 2:
            return ~(random_() % 4);
        default:
            return random_() % 40;
    }
}

void StrangeRequests::Fill(pb::Message* message, int depth) {
    const pb::Reflection* const reflection = message->GetReflection();
    const pb::Descriptor* const type = message->GetDescriptor();
    for (int i = 0; i < type->field_count(); ++i) {
        const Field* const field = type->field(i);
        constexpr int kDeepest = 4;
        if (random_() % 4 == 0 || depth > kDeepest) continue;
        const auto times = field->is_repeated() ? random_() % 5 : 1;
        for (std::size_t n = 0; n < times; ++n) {
            const bool adds = field->is_repeated();
            switch (field->cpp_type()) {
                case Field::CPPTYPE_STRING:
                    adds ? reflection->AddString(message, field, Text())
                         : reflection->SetString(message, field, Text());
                    break;
                case Field::CPPTYPE_UINT32:
                    adds ? reflection->AddUInt32(message, field,
                                                 static_cast<std::uint32_t>(Number()))
                         : reflection->SetUInt32(message, field,
                                                 static_cast<std::uint32_t>(Number()));
                    break;
                case Field::CPPTYPE_UINT64:
                    adds ? reflection->AddUInt64(message, field, Number())
                         : reflection->SetUInt64(message, field, Number());
                    break;
                case Field::CPPTYPE_INT32:
                    if (!adds)
                        reflection->SetInt32(message, field, static_cast<std::int32_t>(Number()));
                    break;
                case Field::CPPTYPE_INT64:
                    if (!adds)
                        reflection->SetInt64(message, field, static_cast<std::int64_t>(Number()));
                    break;
                case Field::CPPTYPE_BOOL:
                    if (!adds) reflection->SetBool(message, field, random_() % 2 == 0);
                    break;
                case Field::CPPTYPE_ENUM:
                    if (!adds) reflection->SetEnumValue(message, field, static_cast<int>(Number()));
                    break;
                case Field::CPPTYPE_MESSAGE:
                    Fill(adds ? reflection->AddMessage(message, field)
                              : reflection->MutableMessage(message, field),
                         depth + 1);
                    break;
                default:
                    ADD_FAILURE() << "a field of another kind: " << field->full_name();
            }
        }
    }
}

}  // namespace oam::torture
