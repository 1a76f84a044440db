// What could not be done, why, and what the operator can do about it.
//
// The tool prints both texts to standard error and ends with the status of the kind; the daemon
// sends them to its client. Neither is ever swallowed on the way.
#pragma once

#include <stdexcept>
#include <string>

namespace oam {

// Of the tool.
enum ExitStatus {
    kDone = 0,
    kFailed = 1,
    kUsage = 2,
    kNoDaemon = 3,
    kNotFound = 4,
    kNotPermitted = 5,
    kBusy = 6,  // or vetoed by whoever has a say
    kOutcomeUnknown = 7,
    kPartlyDone = 8,
    kInterrupted = 130,
};

// What a failure is about, as far as it is about one thing.
struct Subject {
    std::string object;
    std::string keyword;
    std::string value;
};

class Failure : public std::runtime_error {
  public:
    explicit Failure(const std::string& what, std::string advice = {}, ExitStatus status = kFailed);
    // `what` is followed by the code's name, and the code decides the status.
    Failure(unsigned code, const std::string& what, std::string advice = {});
    // One that another process told of, word for word.
    Failure(unsigned code, ExitStatus status, const std::string& whole, std::string advice);

    // The service's code, or 0.
    unsigned Code() const { return code_; }
    ExitStatus Status() const { return status_; }
    const std::string& Advice() const { return advice_; }

    // throw Failure(code, "cannot set ...").About({object, keyword, value});
    Failure&& About(Subject subject) && {
        subject_ = std::move(subject);
        return std::move(*this);
    }
    const Subject& About() const& { return subject_; }

  private:
    std::string advice_;
    Subject subject_;
    unsigned code_ = 0;
    ExitStatus status_;
};

// The status that a refusal with this code ends with.
ExitStatus StatusOf(unsigned code);

class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// "OAMERR_NOT_FOUND (0x40000004)", or the number alone when nobody knows the code.
std::string CodeText(unsigned code);

// Another process knows this name of a plug-in's code; CodeText tells it from now on.
void NameCode(unsigned code, const std::string& name);

// "0x40000004".
std::string HexText(unsigned code);

// The text in double quotes, fit to be shown.
std::string Quoted(const std::string& text);

}  // namespace oam
