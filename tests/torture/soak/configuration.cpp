#include "configuration.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string_view>

namespace oam::torture {

using test::Entries;
using test::ObjectEntries;

namespace {

constexpr const char* kSupervisor = "Supervisor";
constexpr const char* kExportRoot = "OA&M Configuration ver. 1.0";

// The value of an entry, which is taken out; a fault when there is none.
std::string take(ObjectEntries& object, const std::string& name, std::string* fault) {
    const auto found = std::find_if(object.entries.begin(), object.entries.end(),
                                    [&](const auto& entry) { return entry.first == name; });
    if (found == object.entries.end()) {
        *fault += object.name + " has no " + name + '\n';
        return {};
    }
    const std::string value = found->second;
    object.entries.erase(found);
    return value;
}

std::string textOf(const Entries& entries) {
    std::string text;
    for (const auto& [name, value] : entries) text += "  " + name + '=' + value + '\n';
    return text;
}

void addSettings(ObjectEntries object, Found* found) {
    for (unsigned bit = 0; bit < std::size(kSettingNames); ++bit)
        if (take(object, kSettingNames[bit], &found->fault) == "Yes")
            found->configuration.settings |= 1U << bit;
    found->rest[object.name] = textOf(object.entries);
}

void addBoard(ObjectEntries object, Found* found) {
    const Entries all = object.entries;
    if (take(object, "Name", &found->fault) != object.name)
        found->fault += object.name + " has another name inside\n";
    const std::string made = take(object, kMadeKeyword, &found->fault);
    Board board;
    board.made = std::strtoull(made.c_str(), nullptr, 10);
    for (const auto& [name, value] : MarksOf(0)) {
        const std::string mark = take(object, name, &found->fault);
        if (name == kStampKeyword) board.stamp = std::strtoull(mark.c_str(), nullptr, 10);
    }
    for (const auto& mark : MarksOf(board.stamp)) {
        if (std::find(all.begin(), all.end(), mark) != all.end()) continue;
        found->fault += object.name + " shows half a change:\n" + textOf(all);
        break;
    }
    if (!found->configuration.boards.emplace(object.name, board).second)
        found->fault += object.name + " is there twice\n";
    found->rest["made " + made] = textOf(object.entries);
}

Found understand(const std::vector<ObjectEntries>& objects) {
    Found found;
    for (const ObjectEntries& object : objects) {
        const bool isBoard =
            std::any_of(object.entries.begin(), object.entries.end(),
                        [](const auto& entry) { return entry.first == "Product"; });
        if (isBoard) {
            addBoard(object, &found);
        } else if (object.name == kSupervisor) {
            addSettings(object, &found);
        } else {
            found.rest[object.name] = textOf(object.entries);
        }
    }
    if (found.rest.count(kSupervisor) == 0) found.fault += "there is no Supervisor\n";
    return found;
}

}  // namespace

Entries MarksOf(std::uint64_t stamp) {
    const std::string text = std::to_string(stamp);
    const auto filled = [&](unsigned which) {
        return text + std::string(stamp * 37 % (60 * which), static_cast<char>('a' + stamp % 26));
    };
    return {{kStampKeyword, text},
            {"Driver.BoardId", text},
            {"Mark.First", filled(1)},
            {"Mark.Second", filled(2)},
            {"Mark.Third", filled(3)}};
}

std::string TextOf(const Configuration& configuration) {
    std::string text = "settings " + std::to_string(configuration.settings);
    for (const auto& [name, board] : configuration.boards)
        text += ", \"" + name + "\" of " + std::to_string(board.made) + " at " +
                std::to_string(board.stamp);
    return text + '\n';
}

Found FromDigest(const std::string& digest) {
    std::vector<ObjectEntries> objects;
    std::istringstream lines(digest);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t equals = line.find('=');
        if (!line.starts_with("  ")) {
            objects.push_back({line, {}});
        } else if (!objects.empty() && equals != std::string::npos) {
            objects.back().entries.emplace_back(line.substr(2, equals - 2),
                                                line.substr(equals + 1));
        }
    }
    return understand(objects);
}

Found FromExport(const std::string& bytes) {
    const std::string first = std::string("<?XML version=\"1.0\"?>\n<") + kExportRoot + ">\n";
    const std::string last = std::string("</") + kExportRoot + ">\n";
    if (!bytes.starts_with(first) || !bytes.ends_with(last))
        return {{}, {}, "the export is not whole: " + bytes};
    std::vector<ObjectEntries> objects;
    std::istringstream lines(bytes.substr(first.size(), bytes.size() - first.size() - last.size()));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t begin = line.find_first_not_of(' ');
        const std::size_t end = line.find('>');
        if (begin == std::string::npos || line[begin] != '<' || end == std::string::npos)
            return {{}, {}, "the export has the line " + line};
        const std::string name = line.substr(begin + 1, end - begin - 1);
        if (name.starts_with('/')) continue;
        if (end + 1 == line.size()) {
            objects.push_back({name, {}});
        } else if (!objects.empty()) {
            objects.back().entries.emplace_back(name, line.substr(end + 1, line.size() - end - 4));
        }
    }
    return understand(objects);
}

}  // namespace oam::torture
