// Finding a board by one of its identities: one option each, of which one is given.
#pragma once

#include <string>
#include <vector>

#include "text_answer.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace oam {

class BoardLookup {
  public:
    void Declare(CLI::App& app);
    void Check() const;

    // The board's name.
    Answer Ask() const;

  private:
    struct Given {
        size_t row;
        std::vector<std::string> values;
    };

    Given Find() const;

    std::vector<CLI::Option*> options_;
};

}  // namespace oam
