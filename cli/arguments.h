// What a command declares of its command line: names that stand alone are positional arguments,
// names with hyphens are options.
//
// Values are stored while the command line is read, after they were checked; a declared place must
// live as long as the reading. Behind this header alone stands the library that does the reading.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "number.h"

namespace CLI {
class App;
}

namespace oam {

class Arguments {
  public:
    explicit Arguments(CLI::App& app) : app_(app) {}

    // One text that must be given; one that may be.
    void Required(const char* name, std::string* value, const std::string& description);
    void Optional(const char* name, std::optional<std::string>* value,
                  const std::string& description, const char* placeholder = nullptr);
    // One text or more; any number of them.
    void Required(const char* name, std::vector<std::string>* values,
                  const std::string& description);
    void Optional(const char* name, std::vector<std::string>* values,
                  const std::string& description);

    void Flag(const char* name, bool* value, const std::string& description);
    // An option whose value may be left out: the text is empty then.
    void FlagWithText(const char* name, std::optional<std::string>* value, const char* placeholder,
                      const std::string& description);
    // An option with so many values; none of them when it is not given.
    void Several(const char* name, int count, std::vector<std::string>* values,
                 const char* placeholder, const std::string& description);
    // An option whose value is checked against the range.
    void Number(const char* name, std::optional<unsigned>* value, NumberRange range,
                const std::string& description);

  private:
    CLI::App& app_;
};

}  // namespace oam
