#include "config_rules.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>

#include "failure.h"
#include "foreign_text.h"
#include "object_kind.h"
#include "storable.h"

namespace oam {
namespace {

std::string place(const std::string& file, Position at) {
    return Shown(file) + (at.line ? ":" + std::to_string(at.line) : "");
}

// One object by itself.
class ObjectCheck {
  public:
    ObjectCheck(const FoundObject& found, std::vector<Finding>* findings)
        : found_(found), findings_(findings) {}

    void Run() {
        const DataObject& object = found_.object;
        Refuse(object.at, "the object name", object.name, WhyObjectNameIsLost(object.name));
        if (KindOf(object.name) == ObjectKind::kSupervisor && object.name != "Supervisor")
            Add(object.at, "the Supervisor must be spelled \"Supervisor\"");
        std::set<std::string, NameLess> seen;
        for (const DataEntry& entry : object.entries) {
            Refuse(entry.at, "the keyword name", entry.name,
                   WhyKeywordNameIsLost(object.name, entry.name));
            Refuse(entry.at, "the value of", entry.name, WhyValueIsLost(entry.value));
            if (!seen.insert(entry.name).second)
                Add(entry.at, "the keyword " + Quoted(entry.name) + " stands here again");
        }
        CheckName();
    }

  private:
    void CheckName() {
        const DataObject& object = found_.object;
        const DataEntry* name = object.Find("Name");
        if (!name)
            Add(object.at, Quoted(object.name) + " has no keyword \"Name\": it cannot be changed");
        else if (name->value != object.name)
            Add(name->at, "the keyword \"Name\" is " + Quoted(name->value) + " instead of " +
                              Quoted(object.name));
    }

    void Refuse(Position at, const char* what, const std::string& name, const std::string& why) {
        if (!why.empty())
            Add(at, std::string(what) + ' ' + Quoted(name) + " cannot be kept: " + why);
    }

    void Add(Position at, const std::string& text) {
        findings_->push_back({found_.file, at, text});
    }

    const FoundObject& found_;
    std::vector<Finding>* findings_;
};

void checkDuplicateNames(const std::vector<FoundObject>& objects, std::vector<Finding>* findings) {
    std::map<std::string, const FoundObject*, NameLess> seen;
    for (const FoundObject& found : objects) {
        const auto [first, isNew] = seen.try_emplace(found.object.name, &found);
        if (!isNew)
            findings->push_back({found.file, found.object.at,
                                 "a second object named " + Quoted(found.object.name) +
                                     "; the first is in " +
                                     place(first->second->file, first->second->object.at)});
    }
}

// As the service reads a number; a board without one has 0.
unsigned numberOf(const DataObject& object) {
    const DataEntry* number = object.Find("Number");
    return number ? static_cast<unsigned>(std::strtoul(number->value.c_str(), nullptr, 10)) : 0;
}

void checkBoardNumbers(const std::vector<FoundObject>& objects, const IsServed& served,
                       std::vector<Finding>* findings) {
    std::map<unsigned, const FoundObject*> seen;
    for (const FoundObject& found : objects) {
        const DataObject& object = found.object;
        const DataEntry* product = object.Find("Product");
        if (KindOf(object.name) != ObjectKind::kBoard || !product || !served(product->value))
            continue;
        const auto [first, isNew] = seen.try_emplace(numberOf(object), &found);
        const DataEntry* number = object.Find("Number");
        if (!isNew)
            findings->push_back({found.file, number ? number->at : object.at,
                                 "board number " + std::to_string(first->first) + " belongs to " +
                                     Quoted(first->second->object.name) + " in " +
                                     place(first->second->file, first->second->object.at) +
                                     " already: the service would not start"});
    }
}

// "Obj<number>.xmo", the form that the service gives to boards.
bool isBoardFile(const std::string& file) {
    if (!file.starts_with("Obj") || !file.ends_with(".xmo") || file.size() < 8) return false;
    return std::all_of(file.begin() + 3, file.end() - 4,
                       [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

std::string FindingText(const Finding& finding) {
    std::string text = place(finding.file, finding.at);
    if (finding.at.line) text += ':' + std::to_string(finding.at.column);
    return text + ": " + finding.text;
}

std::vector<Finding> CheckObjects(const std::vector<FoundObject>& objects, const IsServed& served) {
    std::vector<Finding> findings;
    for (const FoundObject& found : objects) ObjectCheck(found, &findings).Run();
    checkDuplicateNames(objects, &findings);
    checkBoardNumbers(objects, served, &findings);
    return findings;
}

std::vector<Finding> CheckSharedDataFiles(const std::vector<FoundName>& names) {
    std::vector<Finding> findings;
    std::map<std::string, const FoundName*> owners;
    for (const FoundName& found : names) {
        const auto file = DecidedDataFile(found.name);
        if (!file || KindOf(found.name) == ObjectKind::kSupervisor) continue;
        const auto add = [&](const std::string& whose) {
            findings.push_back({found.file, found.at,
                                Quoted(found.name) + " would share the data file " + Quoted(*file) +
                                    " with " + whose});
        };
        if (*file == "Super.xmo") add("the Supervisor");
        if (isBoardFile(*file)) add("a board");
        const auto [owner, isNew] = owners.try_emplace(*file, &found);
        if (!isNew && !SameName(owner->second->name, found.name)) add(Quoted(owner->second->name));
    }
    return findings;
}

}  // namespace oam
