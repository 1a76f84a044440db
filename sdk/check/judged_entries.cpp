#include "judged_entries.h"

#include <dlfcn.h>

#include <array>
#include <charconv>
#include <cstring>
#include <exception>
#include <string>

#include "answer_buffer.h"
#include "entry_call.h"
#include "finding.h"
#include "handle_ledger.h"
#include "service.h"
#include "shown.h"
#include "zol/zol.h"

namespace oam::check {
namespace {

// What the service reads of a count; above it, it gives up.
constexpr int kHighestCount = 4096;
constexpr unsigned int kRoomForCount = 16;

std::array<void*, kEntryCount> addresses{};

template <class Function>
Function* real(Entry entry) {
    return reinterpret_cast<Function*>(addresses[static_cast<std::size_t>(entry)]);
}

template <class Body>
unsigned int watch(Entry entry, std::string subject, const Body& body) {
    EntryCall call(entry, std::move(subject));
    unsigned int result = OAM_REASON_FAILED;
    try {
        result = body();
    } catch (const std::exception& error) {
        Tell(Rule::Throws, entry, "an exception left it: " + Quoted(error.what()));
    } catch (...) {
        Tell(Rule::Throws, entry, "an exception left it");
    }
    call.EndedWith(result);
    return result;
}

// The same for an entry that works on an open object.
template <class Body>
unsigned int watchAccess(Entry entry, unsigned long handle, std::string subject, const Body& body) {
    bool before = false;
    bool after = false;
    (void)Service().DbGetProviderMode(handle, &before);
    const unsigned int result = watch(entry, std::move(subject), body);
    (void)Service().DbGetProviderMode(handle, &after);
    if (after != before)
        Tell(Rule::ProviderMode, entry,
             std::string("it left the provider mode ") + (after ? "on" : "off"));
    return result;
}

void judgeCount(Entry entry, std::string_view keyword, const char* text) {
    constexpr std::string_view kSuffix = ".Count";
    if (!keyword.ends_with(kSuffix)) return;
    int count = -1;
    const char* end = text + std::strlen(text);
    const auto parsed = std::from_chars(text, end, count);
    if (parsed.ec == std::errc() && parsed.ptr == end && count >= 0 && count <= kHighestCount)
        return;
    Tell(Rule::Counts, entry, Quoted(keyword) + " is " + Quoted(text));
}

std::string bufferText(const char* buffer, unsigned int size) {
    return buffer != nullptr ? "a buffer of " + std::to_string(size) : "no buffer";
}

// `answer` is called with the buffer to answer into; `countName` is what the answer may count.
template <class Answer>
unsigned int watchAnswer(Entry entry, unsigned long handle, const std::string& subject,
                         const char* countName, char* buffer, unsigned int size,
                         const Answer& answer) {
    const std::string whole = subject + " and " + bufferText(buffer, size);
    if (buffer == nullptr)
        return watchAccess(entry, handle, whole, [&] { return answer(nullptr); });
    AnswerBuffer guarded(size);
    const unsigned int result =
        watchAccess(entry, handle, whole, [&] { return answer(guarded.Data()); });
    if (!guarded.Judge(entry, whole, result)) return result != 0 ? result : OAM_REASON_FAILED;
    // What was cut has been told.
    if (countName != nullptr && size >= kRoomForCount) judgeCount(entry, countName, guarded.Text());
    std::memcpy(buffer, guarded.Text(), std::strlen(guarded.Text()) + 1);
    return result;
}

void endHandles() {
    for (const auto& left : HandleLedger::Instance().TakeAll())
        Tell(Rule::OpenHandles, Entry::Exit, "it left " + Quoted(left.object) + " open");
}

}  // namespace

namespace judged {

unsigned int Init(const char* fileName) {
    return watch(Entry::Init, Quoted(fileName),
                 [=] { return real<oam_plugin_init>(Entry::Init)(fileName); });
}

unsigned int Exit() {
    const unsigned int result =
        watch(Entry::Exit, "", [] { return real<oam_plugin_exit>(Entry::Exit)(); });
    endHandles();
    return result;
}

const char* GetText(unsigned int code) {
    const char* text = nullptr;
    watch(Entry::GetText, HexText(code), [&] {
        text = real<oam_plugin_get_text>(Entry::GetText)(code);
        return OAM_SUCCESS;
    });
    return text;
}

unsigned int AlertReceive(const oam_msg_tag* message) {
    return watch(Entry::AlertReceive, CodeText(message->code),
                 [=] { return real<oam_plugin_alert_receive>(Entry::AlertReceive)(message); });
}

unsigned int DetectBoards() {
    return watch(Entry::DetectBoards, "",
                 [] { return real<oam_plugin_detect_boards>(Entry::DetectBoards)(); });
}

unsigned int CreateBoard(const char* board, const char* product) {
    return watch(Entry::CreateBoard, Quoted(board) + ", " + Quoted(product),
                 [=] { return real<oam_plugin_create_board>(Entry::CreateBoard)(board, product); });
}

unsigned int DestroyBoard(const char* board) {
    return watch(Entry::DestroyBoard, Quoted(board),
                 [=] { return real<oam_plugin_destroy_board>(Entry::DestroyBoard)(board); });
}

unsigned int OpenObject(unsigned long handle, unsigned int mode) {
    HandleLedger::Instance().Lent(handle);
    const unsigned int result =
        watchAccess(Entry::OpenObject, handle, "mode " + std::to_string(mode),
                    [=] { return real<oam_plugin_open_object>(Entry::OpenObject)(handle, mode); });
    if (result != OAM_SUCCESS) HandleLedger::Instance().TakenBack(handle);
    return result;
}

unsigned int CloseObject(unsigned long handle) {
    const unsigned int result = watchAccess(Entry::CloseObject, handle, "", [=] {
        return real<oam_plugin_close_object>(Entry::CloseObject)(handle);
    });
    HandleLedger::Instance().TakenBack(handle);
    return result;
}

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    return watchAccess(
        Entry::SetKeyword, handle, QuotedOrNull(keyword) + " to " + QuotedOrNull(value),
        [=] { return real<oam_plugin_set_keyword>(Entry::SetKeyword)(handle, keyword, value); });
}

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    return watchAnswer(Entry::GetKeyword, handle, QuotedOrNull(keyword), keyword, buffer, size,
                       [=](char* guarded) {
                           return real<oam_plugin_get_keyword>(Entry::GetKeyword)(handle, keyword,
                                                                                  guarded, size);
                       });
}

unsigned int GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                          char* buffer, unsigned int size) {
    return watchAnswer(Entry::GetQualifier, handle,
                       QuotedOrNull(keyword) + ", " + QuotedOrNull(qualifier), qualifier, buffer,
                       size, [=](char* guarded) {
                           return real<oam_plugin_get_qualifier>(Entry::GetQualifier)(
                               handle, keyword, qualifier, guarded, size);
                       });
}

unsigned int StartBoard(const char* board) {
    return watch(Entry::StartBoard, Quoted(board),
                 [=] { return real<oam_plugin_start_board>(Entry::StartBoard)(board); });
}

unsigned int StopBoard(const char* board) {
    return watch(Entry::StopBoard, Quoted(board),
                 [=] { return real<oam_plugin_stop_board>(Entry::StopBoard)(board); });
}

unsigned int TestBoard(const char* board, unsigned int test) {
    return watch(Entry::TestBoard, Quoted(board) + ", " + HexText(test),
                 [=] { return real<oam_plugin_test_board>(Entry::TestBoard)(board, test); });
}

unsigned int SendBuffer(const char* board, const void* buffer, unsigned int length) {
    return watch(
        Entry::SendBuffer,
        Quoted(board) + ", " + (buffer != nullptr ? "" : "null and ") + std::to_string(length) +
            " bytes",
        [=] { return real<oam_plugin_send_buffer>(Entry::SendBuffer)(board, buffer, length); });
}

unsigned int GetBoardStatus(const char* board, unsigned int selector, int* status) {
    constexpr int kPattern = 0x5AA5C33C;
    const std::string subject = Quoted(board) + ", " + std::to_string(selector);
    int answer = kPattern;
    const unsigned int result = watch(Entry::GetBoardStatus, subject, [&] {
        return real<oam_plugin_get_board_status>(Entry::GetBoardStatus)(
            board, selector, status != nullptr ? &answer : nullptr);
    });
    if (result != OAM_SUCCESS && answer != kPattern)
        Tell(Rule::Untouched, Entry::GetBoardStatus,
             subject + ": it answered " + CodeText(result) + " and wrote the status");
    if (result == OAM_SUCCESS && status != nullptr) *status = answer;
    return result;
}

bool Has(Entry entry) { return addresses[static_cast<std::size_t>(entry)] != nullptr; }

std::string NamedCode(unsigned int code) {
    const bool mayHaveName = !IsServiceCode(code) && Has(Entry::GetText);
    const char* name = mayHaveName ? GetText(code) : nullptr;
    return name != nullptr ? name + (" (" + HexText(code) + ")") : CodeText(code);
}

oam_plugin_get_text* RawGetText() { return real<oam_plugin_get_text>(Entry::GetText); }

}  // namespace judged

namespace {

// In the order of the entries.
void* const kJudges[] = {
#define CHECK_ENTRY(name, inComponent, required, underLock) reinterpret_cast<void*>(&judged::name),
#include "entries.def"
#undef CHECK_ENTRY
};

}  // namespace
}  // namespace oam::check

extern "C" __attribute__((visibility("default"))) unsigned zolGetFunctionAddr(
    void* library, const char* name, void** address) noexcept {
    using namespace oam::check;
    void* const found = library != nullptr ? dlsym(library, name) : nullptr;
    if (found == nullptr) return ZOL_NO_SYMBOL;
    *address = found;
    for (std::size_t i = 0; i < kEntryCount; ++i) {
        if (std::strcmp(kEntries[i].name, name) != 0) continue;
        addresses[i] = found;
        *address = kJudges[i];
    }
    return 0;
}
