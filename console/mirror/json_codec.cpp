#include "mirror/json_codec.h"

#include <google/protobuf/descriptor.h>
#include <google/protobuf/duration.pb.h>
#include <google/protobuf/timestamp.pb.h>

#include <charconv>
#include <cmath>
#include <limits>

#include "foreign_text.h"
#include "mirror/time_text.h"

namespace oam::console {
namespace {

using google::protobuf::Descriptor;
using google::protobuf::Duration;
using google::protobuf::EnumDescriptor;
using google::protobuf::EnumValueDescriptor;
using google::protobuf::FieldDescriptor;
using google::protobuf::Message;
using google::protobuf::Reflection;
using google::protobuf::Timestamp;

constexpr double kNanos = 1e9;

std::string commonBeginning(const EnumDescriptor& type) {
    const std::string first = type.value(0)->name();  // <PREFIX>_UNSPECIFIED
    return first.substr(0, first.rfind('_') + 1);
}

const EnumValueDescriptor* enumValue(const EnumDescriptor& type, const std::string& text) {
    for (int i = 0; i < type.value_count(); ++i)
        if (EnumText(*type.value(i)) == text) return type.value(i);
    return nullptr;
}

// Element `index` of a repeated field, or (-1) the field itself.
Json valueToJson(const Message& message, const FieldDescriptor& field, int index) {
    const Reflection& of = *message.GetReflection();
    const bool isOne = index < 0;
    switch (field.cpp_type()) {
        case FieldDescriptor::CPPTYPE_INT32:
            return isOne ? of.GetInt32(message, &field)
                         : of.GetRepeatedInt32(message, &field, index);
        case FieldDescriptor::CPPTYPE_UINT32:
            return isOne ? of.GetUInt32(message, &field)
                         : of.GetRepeatedUInt32(message, &field, index);
        case FieldDescriptor::CPPTYPE_INT64:
            return isOne ? of.GetInt64(message, &field)
                         : of.GetRepeatedInt64(message, &field, index);
        case FieldDescriptor::CPPTYPE_UINT64:
            return isOne ? of.GetUInt64(message, &field)
                         : of.GetRepeatedUInt64(message, &field, index);
        case FieldDescriptor::CPPTYPE_DOUBLE:
            return isOne ? of.GetDouble(message, &field)
                         : of.GetRepeatedDouble(message, &field, index);
        case FieldDescriptor::CPPTYPE_FLOAT:
            return isOne ? of.GetFloat(message, &field)
                         : of.GetRepeatedFloat(message, &field, index);
        case FieldDescriptor::CPPTYPE_BOOL:
            return isOne ? of.GetBool(message, &field) : of.GetRepeatedBool(message, &field, index);
        case FieldDescriptor::CPPTYPE_ENUM:
            return EnumText(isOne ? *of.GetEnum(message, &field)
                                  : *of.GetRepeatedEnum(message, &field, index));
        case FieldDescriptor::CPPTYPE_STRING:
            return TextToJson(isOne ? of.GetString(message, &field)
                                    : of.GetRepeatedString(message, &field, index));
        case FieldDescriptor::CPPTYPE_MESSAGE:
            return ToJson(isOne ? of.GetMessage(message, &field)
                                : of.GetRepeatedMessage(message, &field, index));
    }
    return nullptr;
}

[[noreturn]] void mismatch(const FieldDescriptor& field, const std::string& wanted) {
    throw BadRequest('"' + field.json_name() + "\" must be " + wanted);
}

template <class Number>
Number numberOf(const Json& json, const FieldDescriptor& field) {
    if (json.is_number_unsigned()) {
        const auto value = json.get<std::uint64_t>();
        if (value <= static_cast<std::uint64_t>(std::numeric_limits<Number>::max()))
            return static_cast<Number>(value);
    } else if (json.is_number_integer() && std::numeric_limits<Number>::is_signed) {
        const auto value = json.get<std::int64_t>();
        if (value >= static_cast<std::int64_t>(std::numeric_limits<Number>::min()))
            return static_cast<Number>(value);
    }
    mismatch(field,
             "a whole number of at most " + std::to_string(std::numeric_limits<Number>::max()));
}

std::string textOf(const Json& json, const FieldDescriptor& field) {
    if (auto text = TextFromJson(json)) return *std::move(text);
    mismatch(field, "a string, or {\"base64\": \"...\"}");
}

// Appends to a repeated field, sets any other.
void takeValue(const Json& json, const FieldDescriptor& field, Message* message) {
    const Reflection& of = *message->GetReflection();
    const bool isMany = field.is_repeated();
    switch (field.cpp_type()) {
        case FieldDescriptor::CPPTYPE_INT32: {
            const auto value = numberOf<std::int32_t>(json, field);
            return isMany ? of.AddInt32(message, &field, value)
                          : of.SetInt32(message, &field, value);
        }
        case FieldDescriptor::CPPTYPE_UINT32: {
            const auto value = numberOf<std::uint32_t>(json, field);
            return isMany ? of.AddUInt32(message, &field, value)
                          : of.SetUInt32(message, &field, value);
        }
        case FieldDescriptor::CPPTYPE_INT64: {
            const auto value = numberOf<std::int64_t>(json, field);
            return isMany ? of.AddInt64(message, &field, value)
                          : of.SetInt64(message, &field, value);
        }
        case FieldDescriptor::CPPTYPE_UINT64: {
            const auto value = numberOf<std::uint64_t>(json, field);
            return isMany ? of.AddUInt64(message, &field, value)
                          : of.SetUInt64(message, &field, value);
        }
        case FieldDescriptor::CPPTYPE_BOOL:
            if (!json.is_boolean()) mismatch(field, "true or false");
            return isMany ? of.AddBool(message, &field, json.get<bool>())
                          : of.SetBool(message, &field, json.get<bool>());
        case FieldDescriptor::CPPTYPE_ENUM: {
            const auto* const value =
                json.is_string() ? enumValue(*field.enum_type(), json.get<std::string>()) : nullptr;
            if (value == nullptr) mismatch(field, "the name of one of its values");
            return isMany ? of.AddEnum(message, &field, value) : of.SetEnum(message, &field, value);
        }
        case FieldDescriptor::CPPTYPE_STRING: {
            const std::string text = textOf(json, field);
            if (field.type() == FieldDescriptor::TYPE_STRING && !IsUtf8(text))
                mismatch(field, "UTF-8");
            return isMany ? of.AddString(message, &field, text)
                          : of.SetString(message, &field, text);
        }
        case FieldDescriptor::CPPTYPE_MESSAGE:
            return FromJson(
                json, isMany ? of.AddMessage(message, &field) : of.MutableMessage(message, &field));
        case FieldDescriptor::CPPTYPE_DOUBLE:
        case FieldDescriptor::CPPTYPE_FLOAT:
            break;  // no message of the API has one
    }
    mismatch(field, "left out");
}

// A URL's text as the JSON that the field takes.
Json jsonOf(const std::string& text, const FieldDescriptor& field) {
    switch (field.cpp_type()) {
        case FieldDescriptor::CPPTYPE_STRING:
            return TextToJson(text);
        case FieldDescriptor::CPPTYPE_ENUM:
            return text;
        case FieldDescriptor::CPPTYPE_BOOL:
            if (text == "true" || text == "false") return text == "true";
            mismatch(field, "true or false");
        default:
            break;
    }
    const Json json = Json::parse(text, nullptr, false);
    if (!json.is_number()) mismatch(field, "a number");
    return json;
}

const FieldDescriptor& fieldOf(const Descriptor& type, const std::string& name) {
    for (int i = 0; i < type.field_count(); ++i)
        if (type.field(i)->json_name() == name) return *type.field(i);
    throw BadRequest("there is no member \"" + Shown(name) + "\" here");
}

Duration durationOf(const Json& json) {
    constexpr double kMost = 1e9;
    if (!json.is_number() || !(std::abs(json.get<double>()) <= kMost))
        throw BadRequest("a duration must be a number of seconds");
    Duration duration;
    const double seconds = json.get<double>();
    duration.set_seconds(static_cast<std::int64_t>(seconds));
    duration.set_nanos(static_cast<int>((seconds - std::trunc(seconds)) * kNanos));
    return duration;
}

}  // namespace

std::string EnumText(const EnumValueDescriptor& value) {
    std::string text = value.name().substr(commonBeginning(*value.type()).size());
    for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

Json ToJson(const Message& message) {
    if (const auto* const time = dynamic_cast<const Timestamp*>(&message))
        return TimeText(time->seconds(), time->nanos());
    if (const auto* const duration = dynamic_cast<const Duration*>(&message))
        return static_cast<double>(duration->seconds()) + duration->nanos() / kNanos;
    const Descriptor& type = *message.GetDescriptor();
    const Reflection& of = *message.GetReflection();
    Json json = Json::object();
    for (int i = 0; i < type.field_count(); ++i) {
        const FieldDescriptor& field = *type.field(i);
        if (field.is_repeated()) {
            Json& list = json[field.json_name()] = Json::array();
            for (int k = 0; k < of.FieldSize(message, &field); ++k)
                list.push_back(valueToJson(message, field, k));
        } else if (!field.has_presence() || of.HasField(message, &field)) {
            json[field.json_name()] = valueToJson(message, field, -1);
        }
    }
    return json;
}

void FromJson(const Json& json, Message* message) {
    if (auto* const duration = dynamic_cast<Duration*>(message)) {
        *duration = durationOf(json);
        return;
    }
    const Descriptor& type = *message->GetDescriptor();
    if (!json.is_object()) throw BadRequest("a " + type.name() + " must be an object");
    for (const auto& [name, value] : json.items()) {
        const FieldDescriptor& field = fieldOf(type, name);
        if (const auto* const oneof = field.real_containing_oneof())
            if (message->GetReflection()->HasOneof(*message, oneof))
                throw BadRequest("\"" + Shown(name) + "\" and another member exclude each other");
        if (!field.is_repeated()) {
            takeValue(value, field, message);
            continue;
        }
        if (!value.is_array()) mismatch(field, "an array");
        for (const Json& element : value) takeValue(element, field, message);
    }
}

void SetField(Message* message, std::string_view path, const std::string& text) {
    const auto dot = path.find('.');
    const FieldDescriptor& field =
        fieldOf(*message->GetDescriptor(), std::string(path.substr(0, dot)));
    const bool isMessage = field.cpp_type() == FieldDescriptor::CPPTYPE_MESSAGE;
    if (dot != path.npos) {
        if (!isMessage || field.is_repeated()) mismatch(field, "a plain value");
        return SetField(message->GetReflection()->MutableMessage(message, &field),
                        path.substr(dot + 1), text);
    }
    takeValue(jsonOf(text, field), field, message);
}

}  // namespace oam::console
