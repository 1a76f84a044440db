#include "doors/doors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <utility>

namespace oam::test {

namespace {

constexpr std::chrono::seconds kLimit{30};
// Below it a handle is a number that a test has chosen; above, an address.
constexpr unsigned long kFirstAddress = 0x10000;

struct CodeRow {
    unsigned code;
    const char* name;
};

constexpr CodeRow kCodes[] = {
#define OAM_CODE(name, value) {value, #name},
#include "oam/codes.def"
#undef OAM_CODE
};

}  // namespace

std::string Noted(const char* text) { return text != nullptr ? text : "null"; }
std::string Noted(int number) { return std::to_string(number); }
std::string Noted(unsigned number) { return std::to_string(number); }
std::string Noted(unsigned long handle) {
    return handle < kFirstAddress ? std::to_string(handle) : "handle";
}
std::string Noted(bool on) { return on ? "true" : "false"; }
std::string Noted(char* buffer) { return buffer != nullptr ? "buffer" : "null"; }

std::string CodeName(unsigned code) {
    for (const CodeRow& row : kCodes) {
        if (row.code == code) return row.name;
    }
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", code);
    return text;
}

struct Doors::State {
    mutable std::mutex mutex;
    mutable std::condition_variable noted;
    std::vector<std::string> calls;
    std::string debug;
    std::map<std::string, Hook> hooks;
    std::map<std::string, std::string> texts;
    std::map<std::string, std::vector<std::string>> lists;
};

Doors::Doors() : state_(*new State) {}

// Never destroyed: a detached thread may still note a call while the process ends.
Doors& Doors::The() {
    static Doors& doors = *new Doors;
    return doors;
}

void Doors::Reset() {
    const std::lock_guard hold(state_.mutex);
    state_.calls.clear();
    state_.debug.clear();
    state_.hooks.clear();
    state_.texts.clear();
    state_.lists.clear();
}

void Doors::Answer(const std::string& function, oam_result result) {
    On(function, [result] { return result; });
}

void Doors::On(const std::string& function, Hook hook) {
    const std::lock_guard hold(state_.mutex);
    state_.hooks[function] = std::move(hook);
}

void Doors::AnswerText(const std::string& function, const std::string& text) {
    const std::lock_guard hold(state_.mutex);
    state_.texts[function] = text;
}

void Doors::AnswerList(const std::string& list, std::vector<std::string> names) {
    const std::lock_guard hold(state_.mutex);
    state_.lists[list] = std::move(names);
}

std::vector<std::string> Doors::Calls() const {
    const std::lock_guard hold(state_.mutex);
    return state_.calls;
}

std::vector<std::string> Doors::TakeCalls() {
    const std::lock_guard hold(state_.mutex);
    return std::exchange(state_.calls, {});
}

std::vector<std::string> Doors::CallsOf(const std::vector<std::string>& functions) const {
    std::vector<std::string> found;
    for (const std::string& call : Calls()) {
        for (const std::string& function : functions) {
            if (call.starts_with(function + "(")) found.push_back(call);
        }
    }
    return found;
}

bool Doors::WaitForCall(const std::string& call, size_t count) const {
    std::unique_lock hold(state_.mutex);
    return state_.noted.wait_for(hold, kLimit, [&] {
        return static_cast<size_t>(std::count(state_.calls.begin(), state_.calls.end(), call)) >=
               count;
    });
}

std::string Doors::DebugText() const {
    const std::lock_guard hold(state_.mutex);
    return state_.debug;
}

oam_result Doors::NoteCall(const std::string& function, const std::string& line) {
    Hook hook;
    {
        const std::lock_guard hold(state_.mutex);
        state_.calls.push_back(line);
        const auto found = state_.hooks.find(function);
        if (found != state_.hooks.end()) hook = found->second;
    }
    state_.noted.notify_all();
    return hook ? hook() : OAM_SUCCESS;
}

oam_result Doors::WriteText(const std::string& function, char* buffer, unsigned size) const {
    const std::lock_guard hold(state_.mutex);
    const auto found = state_.texts.find(function);
    return CopyText(found != state_.texts.end() ? found->second.c_str() : "", buffer, size);
}

int Doors::ListCount(const std::string& list) const {
    const std::lock_guard hold(state_.mutex);
    const auto found = state_.lists.find(list);
    return found != state_.lists.end() ? static_cast<int>(found->second.size()) : 0;
}

const char* Doors::ListAt(const std::string& list, int index) const {
    const std::lock_guard hold(state_.mutex);
    return state_.lists.at(list).at(static_cast<size_t>(index)).c_str();
}

void Doors::NoteDebug(const std::string& text) {
    const std::lock_guard hold(state_.mutex);
    state_.debug += text;
}

}  // namespace oam::test
