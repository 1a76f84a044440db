#include "text_probe.h"

#include <vector>

#include "finding.h"
#include "shown.h"

namespace oam::check {
namespace {

constexpr unsigned int kMuchRoom = 4096;

struct Answer {
    oam_result result;
    std::string text;
};

Answer askWith(const Ask& ask, unsigned int size) {
    // One more than told: a size of 0 has a buffer, too.
    std::vector<char> buffer(size + 1);
    const oam_result result = ask(buffer.data(), size);
    return {result, buffer.data()};
}

}  // namespace

std::optional<std::string> ProbeText(Entry entry, const std::string& subject, const Ask& ask) {
    const Answer whole = askWith(ask, kMuchRoom);
    const oam_result existence = ask(nullptr, 0);
    if ((existence == OAM_SUCCESS) != (whole.result == OAM_SUCCESS))
        Tell(Rule::Existence, entry,
             subject + ": " + CodeText(existence) + " without a buffer, " + CodeText(whole.result) +
                 " with one");
    if (whole.result) return {};

    const auto length = static_cast<unsigned int>(whole.text.size());
    const Answer exact = askWith(ask, length + 1);
    if (exact.result)
        Tell(Rule::Fits, entry,
             subject + ": " + CodeText(exact.result) + " for " + std::to_string(length) +
                 " bytes into a buffer of " + std::to_string(length + 1));
    for (const unsigned int size : {length, length / 2, 0u}) {
        const Answer little = askWith(ask, size);
        if (little.result == OAMERR_NOT_ENOUGH_MEMORY) continue;
        // A success that closed no text has been told.
        if (little.result == OAM_REASON_FAILED) continue;
        Tell(Rule::Fits, entry,
             subject + ": " + CodeText(little.result) + " for " + std::to_string(length) +
                 " bytes into a buffer of " + std::to_string(size));
    }
    return whole.text;
}

void ProbeMissing(Entry entry, const std::string& subject, const Ask& ask) {
    for (const oam_result result : {askWith(ask, kMuchRoom).result, ask(nullptr, 0)})
        if (result != OAMERR_NOT_FOUND)
            Tell(Rule::Unknown, entry, subject + ": " + CodeText(result));
}

}  // namespace oam::check
