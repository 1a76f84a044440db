// The boards that a command is for: named ones, or --all. One of the two must be given.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace oam {

class BoardSelection {
  public:
    void Declare(CLI::App& app, const std::string& description, bool several);
    void Check() const;

    bool IsAll() const { return all_; }
    const std::vector<std::string>& Names() const { return names_; }

    // Spelled as the board table does, each once; all of the table with --all.
    std::vector<std::string> Resolve() const;

  private:
    std::vector<std::string> names_;
    bool all_ = false;
};

}  // namespace oam
