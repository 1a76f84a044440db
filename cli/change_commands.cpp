// oam set, supervisor: changing objects.
#include <algorithm>

#include "arguments.h"
#include "command.h"
#include "console.h"
#include "foreign_text.h"
#include "service.h"

namespace oam {
namespace {

constexpr const char* kSupervisor = "Supervisor";

constexpr const char* kSettings[] = {"AutoStartEnabled", "AutoStopEnabled", "SynchronizeEnabled",
                                     "OammonLog"};

void change(Service& service, Console& console, const std::string& object,
            const std::vector<Assignment>& assignments) {
    service.ChangeObject(object, assignments);
    Table table{{{"keyword", "KEYWORD"}, {"value", "VALUE"}}, {}};
    for (const Assignment& done : assignments) table.rows.push_back({done.keyword, done.value});
    if (console.IsJson())
        console.ShowJson({{"object", object}, {"changed", AsJson(table)}});
    else
        console.Show("changed", table);
}

class SetCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("OBJECT", &object_, "The object's name");
        arguments.Required("KEYWORD=VALUE", &texts_, "The keywords to change, all or none");
    }

    void CheckArguments() override { changes_ = ParseAssignments(texts_); }

  protected:
    ExitStatus Work(Service& service, Console& console) override {
        change(service, console, object_, changes_);
        return kDone;
    }

  private:
    std::string object_;
    std::vector<std::string> texts_;
    std::vector<Assignment> changes_;
};

class SupervisorCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Optional("KEYWORD=VALUE", &texts_, "Settings to change to Yes or No");
    }

    void CheckArguments() override {
        changes_ = ParseAssignments(texts_);
        for (const Assignment& given : changes_) {
            const auto isGiven = [&](const char* name) { return SameName(name, given.keyword); };
            if (std::none_of(std::begin(kSettings), std::end(kSettings), isGiven))
                throw UsageError("no setting of the service: " + Quoted(given.keyword) +
                                 "; `oam supervisor` lists them");
        }
    }

  protected:
    ExitStatus Work(Service& service, Console& console) override {
        if (changes_.empty())
            Show(service, console);
        else
            Set(service, console);
        return kDone;
    }

  private:
    void Show(Service& service, Console& console) {
        Table table{{{"keyword", "SETTING"}, {"value", "VALUE"}, {"description", "MEANING"}}, {}};
        const std::vector<std::string> names(std::begin(kSettings), std::end(kSettings));
        for (auto& [name, value, qualifiers] : service.DescribeObject(kSupervisor, names))
            table.rows.push_back({name, value.text, qualifiers["Description"]});
        console.Show("settings", table);
    }

    void Set(Service& service, Console& console) {
        change(service, console, kSupervisor, changes_);
        for (const Assignment& done : changes_)
            if (SameName(done.keyword, "OammonLog"))
                console.Note("every start of the service switches OammonLog off again");
    }

    std::vector<std::string> texts_;
    std::vector<Assignment> changes_;
};

constexpr CommandRow kRows[] = {
    {nullptr, "set", "Change keywords of an object",
     "oam set Supervisor AutoStopEnabled=Yes SynchronizeEnabled=No", Make<SetCommand>},
    {nullptr, "supervisor", "Show or change the service's own settings",
     "oam supervisor\noam supervisor AutoStartEnabled=No", Make<SupervisorCommand>},
};

}  // namespace

std::span<const CommandRow> ChangeCommands() { return kRows; }

}  // namespace oam
