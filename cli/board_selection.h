// The boards that a command is for: named ones, or --all. One of the two must be given.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace oam {

class Arguments;
class Service;

class BoardSelection {
  public:
    // `description` of a NAME.
    void Declare(Arguments& arguments, const std::string& description);
    void Check() const;
    void CheckOne() const;

    bool IsAll() const { return all_; }
    // Of the one NAME; nothing with --all.
    std::optional<std::string> One() const;
    const std::vector<std::string>& Names() const { return names_; }

    // Spelled as the board table does, each once; all of the table with --all.
    std::vector<std::string> Resolve(Service& service) const;

  private:
    std::vector<std::string> names_;
    bool all_ = false;
};

}  // namespace oam
