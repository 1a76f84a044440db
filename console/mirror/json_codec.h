// Messages of oam.v1 as JSON, and JSON as messages; told by the messages' own descriptors.
//
//   bytes, string   a string; an object {"base64": "..."} when the bytes are not UTF-8, so that
//   every
//                   name and value comes through unchanged, both ways
//   numbers         numbers, 64-bit ones too
//   enums           their values' names without the common beginning, in lower case: "running"
//   Timestamp       "2026-03-01T12:00:00.000Z"
//   Duration        seconds, as a number
//   optional, oneof, and messages that are absent: no member
//
// Members are named as the fields are, in lowerCamelCase. An unknown member is a mistake: a
// misspelt one would otherwise be a request for something else.
#pragma once

#include <google/protobuf/message.h>

#include <stdexcept>
#include <string>
#include <string_view>

#include "mirror/text_json.h"

namespace oam::console {

// What is wrong with a request, for its sender.
class BadRequest : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

Json ToJson(const google::protobuf::Message& message);

// BadRequest when it does not fit.
void FromJson(const Json& json, google::protobuf::Message* message);
// One field, named as in JSON and with dots for fields of fields ("filter.source"), from a text as
// a URL holds it. A repeated field gets one more element.
void SetField(google::protobuf::Message* message, std::string_view path, const std::string& text);

// "running" of STATE_RUNNING.
std::string EnumText(const google::protobuf::EnumValueDescriptor& value);

}  // namespace oam::console
