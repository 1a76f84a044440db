// What must be there after a kill: every change that was acknowledged, and the one that was under
// way either wholly or not at all.
#pragma once

#include <map>
#include <string>
#include <vector>

class ExpectedBoards {
  public:
    using Boards = std::map<std::string, std::string>;  // name and "Driver.Name"

    // Takes in what a worker told up to its death.
    void Follow(const std::vector<std::string>& lines);
    // Empty when the boards found are right, else what is wrong. What was under way is settled by
    // what was found.
    std::string Settle(const Boards& found);

    static Boards Parse(const std::vector<std::string>& lines);

  private:
    struct Change {
        std::string verb;
        std::string board;
        std::string value;
    };

    void Apply(const Change& change, Boards* boards) const;

    Boards boards_;
    bool underWay_ = false;
    Change change_;
};
