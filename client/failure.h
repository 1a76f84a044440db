// What the tool could not do, why, and what the operator can do about it.
//
// A Failure ends the command with status 1, a UsageError with status 2. Both texts go to standard
// error; neither is ever swallowed on the way.
#pragma once

#include <stdexcept>
#include <string>

namespace oam {

enum ExitStatus { kDone = 0, kFailed = 1, kUsage = 2, kInterrupted = 130 };

class Failure : public std::runtime_error {
  public:
    explicit Failure(const std::string& what, std::string advice = {});
    // `what` is followed by the code's name.
    Failure(unsigned code, const std::string& what, std::string advice = {});

    const std::string& Advice() const { return advice_; }

  private:
    std::string advice_;
};

class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// "OAMERR_NOT_FOUND (0x40000004)", or the number alone when nobody knows the code.
std::string CodeText(unsigned code);

// "0x40000004".
std::string HexText(unsigned code);

// The text in double quotes, fit to be shown.
std::string Quoted(const std::string& text);

}  // namespace oam
