// Stand-in doors: what a room's unit test links in place of the other rooms.
//
// Every function of a stand-in notes its call here, as "Function(argument, argument)", and answers
// what the test has scripted: by default success. The notes of all doors are in one list, so the
// order in which a room uses several doors can be seen. Texts of DebugOutput are kept apart.
//
// There is one list in a process, safe on any thread; the fixture DoorsTest empties it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/text.h"
#include "oam/codes.h"

namespace oam::test {

// How arguments are noted. Numbers as they are; handles too, unless they are addresses.
std::string Noted(const char* text);
std::string Noted(int number);
std::string Noted(unsigned number);
std::string Noted(unsigned long handle);
std::string Noted(bool on);
// A buffer to be filled: "buffer" or "null".
std::string Noted(char* buffer);
// "OAMERR_NOT_FOUND", "OAMEVN_ALERT", or the number in hexadecimal.
std::string CodeName(unsigned code);

class Doors {
  public:
    using Hook = std::function<oam_result()>;

    static Doors& The();

    // Forgets notes, answers, hooks and texts.
    void Reset();

    // From now on the function answers the result; or it runs the hook, with no lock held, on the
    // calling thread, and answers what that answers.
    void Answer(const std::string& function, oam_result result);
    void On(const std::string& function, Hook hook);
    // The text that a reading function writes into its caller's buffer, when it answers success.
    void AnswerText(const std::string& function, const std::string& text);
    // The names that a pair of list functions ("<list>GetCount", "<list>GetAt") shows.
    void AnswerList(const std::string& list, std::vector<std::string> names);

    // All notes so far, in order; TakeCalls also forgets them.
    std::vector<std::string> Calls() const;
    std::vector<std::string> TakeCalls();
    // Those that start with one of the function names.
    std::vector<std::string> CallsOf(const std::vector<std::string>& functions) const;
    // True as soon as a call has been noted `count` times; false when 30 seconds are over.
    bool WaitForCall(const std::string& call, size_t count = 1) const;
    // Everything that DebugOutput was given.
    std::string DebugText() const;

    // ---- For the stand-ins.

    template <class... Arguments>
    oam_result Call(const char* function, Arguments... arguments) {
        std::string line = std::string(function) + "(";
        [[maybe_unused]] const char* separator = "";
        ((line += separator + Noted(arguments), separator = ", "), ...);
        return NoteCall(function, line + ")");
    }
    template <class... Arguments>
    oam_result Read(const char* function, char* buffer, unsigned size, Arguments... arguments) {
        const oam_result result = Call(function, arguments..., buffer, size);
        return result == OAM_SUCCESS ? WriteText(function, buffer, size) : result;
    }
    oam_result NoteCall(const std::string& function, const std::string& line);
    oam_result WriteText(const std::string& function, char* buffer, unsigned size) const;
    int ListCount(const std::string& list) const;
    // Good until the list is answered anew.
    const char* ListAt(const std::string& list, int index) const;
    void NoteDebug(const std::string& text);

  private:
    Doors();
    struct State;
    State& state_;
};

}  // namespace oam::test
