// A request for a host, and what comes back.
//
// The request goes to oam.command.HOST.ROLE.CALLER.VERB (names.h): VERB is a method of oam.v1
// ("StartBoard") that answers, but for sessions and alerts, and ROLE the least role that it needs.
// Its data is the method's request, as JSON in the shape of the console's mirror; an empty one is
// an empty request. The answer is the method's answer as JSON, or {"error": {...}} as the console
// tells a refusal. Any client of the engine can ask so.
//
//   header of the request
//     Oam-Content: protobuf    the request is serialized, and so are answers and refusals
//     Oam-Progress: yes        the host says at once that it has the request, then every second
//     that
//                              it is at work; and an answer may come in several messages
//   header of an answer
//     Oam-Answer: taken        the host has the request (Oam-Progress alone)
//     Oam-Answer: working      it is still at work (Oam-Progress alone)
//     Oam-Answer: message      one message of an answer that has several
//     Oam-Answer: end          the last of the request, always there; of one message it is that
//     Oam-Status: N            of the end: 0 done, else the gRPC status of the refusal
//
// Without Oam-Progress a method that answers with several messages is refused.
#pragma once

#include <chrono>

namespace oam::fleet {

constexpr const char* kContentHeader = "Oam-Content";
constexpr const char* kProtobuf = "protobuf";
constexpr const char* kProgressHeader = "Oam-Progress";
constexpr const char* kYes = "yes";
constexpr const char* kAnswerHeader = "Oam-Answer";
constexpr const char* kTaken = "taken";
constexpr const char* kWorking = "working";
constexpr const char* kMessage = "message";
constexpr const char* kEnd = "end";
constexpr const char* kStatusHeader = "Oam-Status";

// Between two words of a host that is at work.
constexpr auto kWorkingPeriod = std::chrono::seconds(1);

}  // namespace oam::fleet
