// Texts of codes: static ones for the module's own codes, and null for all others.
//
// Which codes are its own, only the module knows. Codes that its entries answered are asked for,
// and very many more are tried.
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "entry_call.h"
#include "finding.h"
#include "judged_entries.h"
#include "opened_object.h"
#include "shown.h"
#include "stages.h"

namespace oam::check {
namespace {

constexpr std::size_t kMostTexts = 1000;

struct KnownText {
    const char* text;
    std::string copy;
};

using KnownTexts = std::map<unsigned int, KnownText>;

// The beginnings and the middles of all ranges that begin at a multiple of 65536, and the whole
// ranges around the service's own.
template <class Visit>
void forManyCodes(const Visit& visit) {
    constexpr unsigned int kHighest = 0xFFFF;
    for (unsigned int high = 0; high <= kHighest; ++high)
        for (unsigned int low = 0; low < 0x20; ++low) {
            visit(high << 16 | low);
            visit(high << 16 | low << 8 | 1);
        }
    for (const unsigned int high : {0u, 0x4000u, 0x4001u, 0x5000u})
        for (unsigned int low = 0; low <= kHighest; ++low) visit(high << 16 | low);
}

KnownTexts collect() {
    KnownTexts texts;
    oam_plugin_get_text* getText = judged::RawGetText();
    CallRecord* scanning = Journal().Begin(CallKind::Entry, "GetText", "many codes");
    const auto note = [&](unsigned int code) {
        if (texts.size() >= kMostTexts) return;
        if (const char* text = getText(code)) texts[code] = {text, text};
    };
    forManyCodes(note);
    for (const unsigned int code : CallHistory::OwnCodes()) note(code);
    Journal().End(scanning);
    return texts;
}

void checkStatic(const KnownTexts& texts, const char* when) {
    for (const auto& [code, known] : texts) {
        if (known.copy == known.text) continue;
        Tell(Rule::StaticTexts, Entry::GetText,
             "the text of " + HexText(code) + " was " + Quoted(known.copy) + " and is " +
                 Quoted(known.text) + " " + when);
        return;
    }
}

void checkForeign(const KnownTexts& texts) {
    if (texts.size() >= kMostTexts) {
        Tell(Rule::ForeignTexts, Entry::GetText, "it has a text for almost every code");
        return;
    }
    for (const auto& [code, known] : texts)
        if (IsServiceCode(code))
            Tell(Rule::ForeignTexts, Entry::GetText,
                 "it answers " + Quoted(known.copy) + " for the service's " + CodeText(code));
}

void checkCodes() {
    for (const unsigned int code : CallHistory::OwnCodes())
        if (judged::GetText(code) == nullptr)
            Tell(Rule::CodeText, Entry::GetText, HexText(code) + " has no text");
}

// So that there are codes to ask for.
void provokeCodes(Bench& bench) {
    for (const auto& board : bench.CreateBoards()) {
        (void)Service().StartBoard(board.c_str(), OAM_SYNCHRONIZED);
        (void)judged::TestBoard(board.c_str(), 0xFFFFFFFF);
        (void)Service().StopBoard(board.c_str(), OAM_SYNCHRONIZED);
        const OpenedObject object(board, OAM_OPEN_WRITE);
        if (!object.Failure()) (void)object.Set("No.Such.Keyword", "check");
    }
}

}  // namespace

void CheckTexts(Bench& bench) {
    if (!bench.Start()) return;
    if (judged::Has(Entry::GetText) && bench.Next()) {
        provokeCodes(bench);
        const auto texts = collect();
        checkStatic(texts, "behind the next calls");
        checkForeign(texts);
        checkCodes();
        std::thread([&] { checkStatic(texts, "on another thread"); }).join();
        bench.Stop();
        checkStatic(texts, "behind Exit");
        return;
    }
    bench.Stop();
}

}  // namespace oam::check
