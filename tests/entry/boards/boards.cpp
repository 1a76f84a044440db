#include "boards.h"

#include <algorithm>

namespace oam::test {

namespace {

void put(Entries& entries, const std::pair<std::string, std::string>& wanted) {
    auto found = std::find_if(entries.begin(), entries.end(),
                              [&](const auto& entry) { return entry.first == wanted.first; });
    if (found != entries.end()) entries.erase(found);
    if (wanted.second != kLeftOut) entries.push_back(wanted);
}

}  // namespace

void BoardTest::Configure(const std::string& board, const Entries& entries) {
    const std::string number = std::to_string(configured_++);
    Entries all = StandardEntries(board, kProduct);
    all.emplace_back("Number", number);
    for (const auto& entry : entries) put(all, entry);
    home.WriteDataFile("Obj" + number + ".xmo", DataFile(board, all));
}

void BoardTest::Settings(const Entries& settings) {
    Entries entries = SupervisorEntries();
    for (const auto& [name, value] : settings) entries = With(entries, name, value);
    home.WriteDataFile("Super.xmo", DataFile("Supervisor", entries));
}

void BoardTest::StartQuietly() {
    Start();
    recorder.Clear();
    alerts.Clear();
}

std::vector<std::string> BoardTest::Asked() const {
    std::vector<std::string> lines;
    for (const std::string& line : recorder.Lines()) {
        if (line.find(" AlertReceive(") == std::string::npos) lines.push_back(line);
    }
    return lines;
}

}  // namespace oam::test
