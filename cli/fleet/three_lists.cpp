#include "cli/fleet/three_lists.h"

#include <algorithm>
#include <array>

#include "foreign_text.h"

namespace oam::fleet {
namespace {

constexpr std::array kKeys = {"done", "refused", "noAnswer"};
constexpr std::array kTitles = {"done", "refused", "did not answer"};

std::string oneLine(std::string text) {
    while (!text.empty() && text.back() == '\n') text.pop_back();
    for (std::size_t at = 0; (at = text.find('\n', at)) != text.npos;) text.replace(at, 1, "; ");
    return text;
}

std::string indented(const std::string& text, const char* by) {
    std::string all;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        all += by + text.substr(at, end - at) + '\n';
        at = end + 1;
    }
    if (!all.empty()) all.pop_back();
    return all;
}

// What a verb prints with --json is one object, or one a line.
Json answerOf(const std::string& out) {
    Json json = Json::parse(out, nullptr, false);
    if (json.is_object()) {
        json.erase("schema");
        return json;
    }
    return out.empty() ? Json() : Json(out);
}

Json asJson(const HostResult& result, HostEnd end) {
    Json json{{"host", result.host}};
    if (end == HostEnd::kRefused) json["status"] = static_cast<int>(result.status);
    if (end != HostEnd::kDone) json["reason"] = oneLine(result.output.err);
    if (end != HostEnd::kNoAnswer) json["answer"] = answerOf(result.output.out);
    if (end == HostEnd::kDone && !result.output.err.empty())
        json["remarks"] = oneLine(result.output.err);
    return json;
}

}  // namespace

HostEnd EndOf(const HostResult& result) {
    if (result.status == kDone) return HostEnd::kDone;
    return result.status == kNoDaemon ? HostEnd::kNoAnswer : HostEnd::kRefused;
}

ExitStatus StatusOf(const std::vector<HostResult>& results) {
    const auto isDone = [](const HostResult& result) { return result.status == kDone; };
    if (std::all_of(results.begin(), results.end(), isDone)) return kDone;
    if (std::any_of(results.begin(), results.end(), isDone)) return kPartlyDone;
    const ExitStatus first = results.front().status;
    const bool isAlike = std::all_of(results.begin(), results.end(), [&](const HostResult& result) {
        return result.status == first;
    });
    return isAlike ? first : kFailed;
}

void Show(Console& console, const std::vector<HostResult>& results) {
    if (console.IsJson()) {
        Json all;
        for (const char* const key : kKeys) all[key] = Json::array();
        for (const HostResult& result : results) {
            const HostEnd end = EndOf(result);
            all[kKeys.at(static_cast<std::size_t>(end))].push_back(asJson(result, end));
        }
        return console.ShowJson(all);
    }
    for (const HostEnd end : {HostEnd::kDone, HostEnd::kRefused, HostEnd::kNoAnswer}) {
        const auto count = std::count_if(results.begin(), results.end(),
                                         [&](const auto& result) { return EndOf(result) == end; });
        if (count == 0) continue;
        console.Say(std::string(kTitles.at(static_cast<std::size_t>(end))) + " (" +
                    std::to_string(count) + "):");
        for (const HostResult& result : results) {
            if (EndOf(result) != end) continue;
            console.Say("  " + Shown(result.host));
            for (const std::string& text : {result.output.out, result.output.err})
                if (const std::string block = indented(text, "    "); !block.empty())
                    console.Say(block);
        }
    }
}

}  // namespace oam::fleet
