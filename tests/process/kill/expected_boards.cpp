#include "expected_boards.h"

#include <sstream>

namespace {

std::vector<std::string> fields(const std::string& line) {
    std::vector<std::string> parts;
    std::istringstream text(line);
    for (std::string part; std::getline(text, part, '\t');) parts.push_back(part);
    return parts;
}

std::string describe(const ExpectedBoards::Boards& boards) {
    std::string text;
    for (const auto& [name, value] : boards) text += "\n  \"" + name + "\" " + value;
    return text;
}

}  // namespace

ExpectedBoards::Boards ExpectedBoards::Parse(const std::vector<std::string>& lines) {
    Boards boards;
    for (const std::string& line : lines) {
        const std::vector<std::string> parts = fields(line);
        if (!parts.empty()) boards[parts[0]] = parts.size() > 1 ? parts[1] : "";
    }
    return boards;
}

void ExpectedBoards::Follow(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        std::vector<std::string> parts = fields(line.substr(2));
        parts.resize(3);
        if (line[0] == '>') {
            change_ = {parts[0], parts[1], parts[2]};
            underWay_ = true;
        } else {
            if (change_.verb == "create") change_ = {"create", parts[1], parts[2]};
            if (parts[0] == "0") Apply(change_, &boards_);
            underWay_ = false;
        }
    }
}

void ExpectedBoards::Apply(const Change& change, Boards* boards) const {
    if (change.verb == "create") {
        (*boards)[change.board] = change.value;
    } else if (change.verb == "delete") {
        boards->erase(change.board);
    } else if (change.verb == "set") {
        (*boards)[change.board] = change.value;
    } else if (change.verb == "rename") {
        const std::string value = (*boards)[change.board];
        boards->erase(change.board);
        (*boards)[change.value] = value;
    }
}

std::string ExpectedBoards::Settle(const Boards& found) {
    Boards after = boards_;
    if (underWay_ && change_.verb == "create") {
        // Its name was not told yet: one board more is right.
        for (const auto& [name, value] : found) {
            if (boards_.count(name) == 0) change_ = {"create", name, value};
        }
    }
    if (underWay_ && !(change_.verb == "create" && change_.board.empty())) Apply(change_, &after);
    const bool right = found == boards_ || (underWay_ && found == after);
    const std::string wrong = right ? ""
                                    : "expected" + describe(boards_) + "\nor" + describe(after) +
                                          "\nfound" + describe(found);
    boards_ = found;
    underWay_ = false;
    return wrong;
}
