// Messages as JSON and back, without loss.
#include "mirror/json_codec.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mirror/base64.h"
#include "oam/v1/alerts.pb.h"
#include "oam/v1/boards.pb.h"
#include "oam/v1/objects.pb.h"
#include "oam/v1/operations.pb.h"

namespace oam::console {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

TEST(ConsoleJson, CarriesBytesThatAreNoTextWithoutLoss) {
    for (const std::string& name : {std::string("plain"), std::string("\xff\xfe"),
                                    std::string("a\0b", 3), std::string("\xed\xa0\x80"),
                                    std::string("\xc0\xaf"), std::string("gr\xc3\xbc\xc3\x9f")}) {
        v1::Board board;
        board.set_name(name);
        v1::Board back;
        FromJson(Json::parse(ToJson(board).dump()), &back);
        EXPECT_EQ(back.name(), name);
    }
    EXPECT_EQ(TextToJson("\xff"), (Json{{"base64", "/w=="}}));
}

TEST(ConsoleJson, CodesAnyBytesAsBase64) {
    std::string bytes;
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(FromBase64(ToBase64(bytes)), bytes);
        bytes += static_cast<char>(i * 37);
    }
    for (const char* wrong : {"a", "ab=", "a===", "ab!=", "=abc", "ab==ab=="})
        EXPECT_EQ(FromBase64(wrong), std::nullopt) << wrong;
}

TEST(ConsoleJson, NamesEnumsTimesAndDurations) {
    v1::Operation operation;
    operation.set_kind(v1::Operation::KIND_START);
    operation.set_state(v1::Operation::STATE_RUNNING);
    operation.mutable_requested()->set_seconds(1772366400);
    operation.mutable_requested()->set_nanos(5000000);
    const Json json = ToJson(operation);
    EXPECT_EQ(json["kind"], "start");
    EXPECT_EQ(json["state"], "running");
    EXPECT_EQ(json["requested"], "2026-03-01T12:00:00.005Z");
    EXPECT_FALSE(json.contains("ended"));
    v1::WaitOperationRequest wait;
    SetField(&wait, "timeLimit", "1.5");
    EXPECT_EQ(wait.time_limit().seconds(), 1);
    EXPECT_EQ(wait.time_limit().nanos(), 500000000);
}

TEST(ConsoleJson, SetsFieldsOfFieldsFromAUrl) {
    v1::ListAlertsRequest request;
    SetField(&request, "filter.codes", "1");
    SetField(&request, "filter.codes", "2");
    SetField(&request, "filter.source", "\xff");
    SetField(&request, "after", "18446744073709551615");
    EXPECT_EQ(request.filter().codes_size(), 2);
    EXPECT_EQ(request.filter().source(), "\xff");
    EXPECT_EQ(request.after(), 18446744073709551615u);
}

TEST(ConsoleJson, RefusesWhatDoesNotFit) {
    struct Case {
        const char* json;
        const char* why;
    };
    for (const auto& [json, why] : {
             Case{R"({"nmae": "x"})", "no member \"nmae\""},
             Case{R"({"changes": {}})", "an array"},
             Case{R"({"name": 7})", "a string"},
             Case{R"({"name": {"base64": "?"}})", "a string"},
             Case{R"({"name": {"base64": "eA==", "more": 1}})", "a string"},
             Case{R"({"withoutAlert": "yes"})", "true or false"},
             Case{R"({"changes": [7]})", "must be an object"},
             Case{R"([])", "must be an object"},
         }) {
        v1::ChangeObjectRequest request;
        const auto take = [&, text = json] { FromJson(Json::parse(text), &request); };
        EXPECT_THAT(take, ThrowsMessage<BadRequest>(HasSubstr(why)));
    }
    v1::BusSlot slot;
    for (const char* number : {"-1", "4294967296", "1.5", "1e3", "\"1\"", "null"})
        EXPECT_THROW(FromJson(Json::parse("{\"bus\":" + std::string(number) + '}'), &slot),
                     BadRequest)
            << number;
    v1::DeleteBoardRequest both;
    EXPECT_THROW(FromJson(Json::parse(R"({"name": "x", "allBoards": true})"), &both), BadRequest);
}

}  // namespace
}  // namespace oam::console
