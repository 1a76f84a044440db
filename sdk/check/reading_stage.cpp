// Reading: every object that the module serves, every keyword and every qualifier of it.
#include <array>

#include "entry_call.h"
#include "finding.h"
#include "opened_object.h"
#include "qualifiers.h"
#include "shown.h"
#include "stages.h"
#include "text_probe.h"

namespace oam::check {
namespace {

// The qualifiers that the service knows, and so do its clients.
constexpr const char* kQualifiers[] = {"Base", "Choices.Count", "Description", "Keywords.Count",
                                       "Max",  "Min",           "ReadOnly",    "Type"};

std::string upper(std::string text) {
    for (char& letter : text)
        if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    return text;
}

Ask askKeyword(const OpenedObject& object, const std::string& keyword) {
    return [&object, keyword](char* buffer, unsigned int size) {
        return Service().GetKeyword(object.Handle(), keyword.c_str(), buffer, size);
    };
}

void checkKeyword(const OpenedObject& object, const std::string& keyword) {
    const auto text = ProbeText(Entry::GetKeyword, Quoted(keyword), askKeyword(object, keyword));
    if (!text) {
        Tell(Rule::Readable, Entry::GetKeyword,
             Quoted(keyword) + ": " + CodeText(CallHistory::LastResult(Entry::GetKeyword)));
        return;
    }
    if (object.Get(upper(keyword)) != text)
        Tell(Rule::Readable, Entry::GetKeyword,
             Quoted(upper(keyword)) + " is not answered as " + Quoted(keyword) + " is");
}

// What the module answers by itself; the service's defaults are no business of this check.
void checkQualifier(const OpenedObject& object, const std::string& keyword,
                    const std::string& qualifier) {
    if (!object.GetQualifier(keyword, qualifier)) return;
    (void)ProbeText(Entry::GetQualifier, Quoted(keyword) + ", " + Quoted(qualifier),
                    [&](char* buffer, unsigned int size) {
                        return Service().GetQualifier(object.Handle(), keyword.c_str(),
                                                      qualifier.c_str(), buffer, size);
                    });
}

// "Base.Count" counts the elements "Base[i]", which are keywords or have members that are.
void checkElements(const OpenedObject& object, const std::string& keyword) {
    constexpr std::string_view kSuffix = ".Count";
    if (!keyword.ends_with(kSuffix)) return;
    const std::string base = keyword.substr(0, keyword.size() - kSuffix.size());
    const std::string text = object.Get(keyword).value_or("0");
    const auto names = object.Keywords();
    const auto count = Qualifiers().NumberOf(text).value_or(0);
    for (long long i = 0; i < count && i < 64; ++i) {
        const std::string element = base + "[" + std::to_string(i) + "]";
        bool isThere = object.Get(element).has_value();
        for (const auto& name : names) isThere = isThere || name.starts_with(element + ".");
        if (isThere) continue;
        Tell(Rule::Counts, Entry::GetKeyword,
             Quoted(keyword) + " is " + Quoted(text) + ", but there is no " + Quoted(element));
        return;
    }
}

void checkMissing(const OpenedObject& object) {
    constexpr const char* kMissing = "No.Such.Keyword";
    ProbeMissing(Entry::GetKeyword, Quoted(kMissing), askKeyword(object, kMissing));
    // An unknown qualifier, since the known ones have defaults.
    ProbeMissing(
        Entry::GetQualifier, "\"Name\", \"NoSuchQualifier\"", [&](char* buffer, unsigned int size) {
            return Service().GetQualifier(object.Handle(), "Name", "NoSuchQualifier", buffer, size);
        });
}

void checkObject(Bench& bench, const std::string& name) {
    OpenedObject object(name, OAM_OPEN_READ);
    if (object.Failure()) {
        if (bench.Next())
            Tell(Rule::Creates, Entry::OpenObject,
                 Quoted(name) + " cannot be opened: " + CodeText(object.Failure()));
        return;
    }
    for (const auto& keyword : object.Keywords()) {
        if (bench.Next()) checkKeyword(object, keyword);
        if (!bench.Next()) continue;
        (void)Qualifiers::Read(object, keyword);
        for (const char* qualifier : kQualifiers) checkQualifier(object, keyword, qualifier);
        checkElements(object, keyword);
    }
    if (bench.Next()) checkMissing(object);
    if (const auto failed = object.Close())
        Tell(Rule::Creates, Entry::CloseObject,
             Quoted(name) + " cannot be closed: " + CodeText(failed));
}

void deleteBoard(const std::string& board) {
    const auto failed = Service().DeleteBoard(board.c_str());
    if (failed)
        Tell(Rule::Creates, Entry::DestroyBoard,
             Quoted(board) + " cannot be deleted: " + CodeText(failed));
}

}  // namespace

void CheckReading(Bench& bench) {
    if (!bench.Start()) return;
    const auto boards = bench.CreateBoards();
    for (const auto& name : bench.Objects()) checkObject(bench, name);
    for (const auto& board : boards)
        if (bench.Next()) deleteBoard(board);
    bench.Stop();
}

}  // namespace oam::check
