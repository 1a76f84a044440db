// What no client should pass, but may: the service hands nulls, empty texts and very long ones on
// as they are. Nothing is judged here but that the module lives on.
#include <string>

#include "finding.h"
#include "judged_entries.h"
#include "opened_object.h"
#include "stages.h"

namespace oam::check {
namespace {

const std::string& longText() {
    static const std::string kText(100000, 'x');
    return kText;
}

void badTexts(Bench& bench, const std::string& name) {
    const char* const texts[] = {
        nullptr, "", "%s%n%s%n", "[", "Name[99999999999999999999].X", longText().c_str()};
    for (const unsigned int mode : {OAM_OPEN_READ, OAM_OPEN_WRITE}) {
        const OpenedObject object(name, mode);
        if (object.Failure()) continue;
        const unsigned long handle = object.Handle();
        char buffer[64];
        for (const char* text : texts) {
            if (bench.Next()) (void)Service().GetKeyword(handle, text, buffer, sizeof buffer);
            if (bench.Next()) (void)Service().GetKeyword(handle, text, nullptr, sizeof buffer);
            if (bench.Next())
                (void)Service().GetQualifier(handle, text, "Type", buffer, sizeof buffer);
            if (bench.Next())
                (void)Service().GetQualifier(handle, "Name", text, buffer, sizeof buffer);
            if (mode == OAM_OPEN_READ) continue;
            if (bench.Next()) (void)Service().SetKeyword(handle, text, "check");
            // Not the number, which the service itself reads.
            if (bench.Next()) (void)Service().SetKeyword(handle, "Product", text);
        }
    }
}

void badBuffers(Bench& bench, const std::string& board) {
    if (bench.Next()) (void)Service().SendBuffer(board.c_str(), nullptr, 0);
    if (bench.Next()) (void)Service().SendBuffer(board.c_str(), nullptr, 16);
    if (bench.Next()) (void)Service().SendBuffer(board.c_str(), "", 0);
    if (bench.Next()) {
        const auto& text = longText();
        (void)Service().SendBuffer(board.c_str(), text.data(),
                                   static_cast<unsigned int>(text.size()));
    }
    if (bench.Next()) (void)Service().BoardGetStatus(board.c_str(), 0xFFFFFFFF, nullptr);
}

}  // namespace

void CheckBadArguments(Bench& bench) {
    if (!bench.Start()) return;
    const auto boards = bench.CreateBoards();
    for (const auto& name : bench.Objects()) badTexts(bench, name);
    for (const auto& board : boards) badBuffers(bench, board);
    bench.Stop();
}

}  // namespace oam::check
