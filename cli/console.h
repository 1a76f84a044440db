// Where the answers go: standard output for results, as text or (with --json) as JSON, and standard
// error for everything else.
//
// In JSON a command prints one object, a stream one object a line; each begins with "schema": 1.
// Output that cannot be written is a Failure: a script must not take half an answer for a whole
// one. What is collected for somebody else is never for people who look.
#pragma once

#include <functional>
#include <string>

#include "failure.h"
#include "table.h"

namespace oam {

struct Alert;

// The answer of a command that is run for somebody else, and what it has said besides.
struct CollectedOutput {
    std::string out;
    std::string err;  // a line each, without the tool's name
};

class Console {
  public:
    // With `collected`, which must outlive it, nothing is written anywhere.
    explicit Console(bool json, CollectedOutput* collected = nullptr)
        : json_(json), collected_(collected) {}

    bool IsJson() const { return json_; }
    bool IsCollected() const { return collected_ != nullptr; }

    // One answer: `table` alone in JSON stands under `key`.
    void Show(const char* key, const Table& table);
    void Show(const Record& record);
    // One object of a command that prints JSON by itself.
    void ShowJson(const Json& members);

    // A line of a stream, out at once.
    void StreamJson(const Json& members);
    void Stream(const std::string& line);

    // Text for people; nothing with --json.
    void Say(const std::string& line);

    // Our own value, as it stands when it goes into a pipe or a file.
    void Value(const std::string& value);

    // A remark on standard error, with the tool's name in front.
    void Note(const std::string& text);
    void Complain(const Failure& failure);
    // What a command's run answers; what it throws is told, and is its status too.
    ExitStatus StatusOf(const std::function<ExitStatus()>& run);
    // An alert that belongs to what is done just now, as a remark.
    void Remark(const Alert& alert);
    // Only for people who look: nothing when standard error is no terminal.
    void Whisper(const std::string& text);

    // Everything out, before the library's exit, which may take long.
    void Flush();

  private:
    void Write(const std::string& text);

    bool json_;
    CollectedOutput* collected_;
};

}  // namespace oam
