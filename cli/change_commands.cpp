// oam set, supervisor: changing objects.

#include "arguments.h"
#include "command.h"
#include "console.h"
#include "foreign_text.h"
#include "object_change.h"
#include "object_kind.h"
#include "opened_object.h"
#include "session.h"

namespace oam {
namespace {

constexpr const char* kSupervisor = "Supervisor";

constexpr const char* kSettings[] = {"AutoStartEnabled", "AutoStopEnabled", "SynchronizeEnabled",
                                     "OammonLog"};

void change(Console& console, const std::string& object,
            const std::vector<Assignment>& assignments) {
    ApplyChange(object, assignments);
    Table table{{{"keyword", "KEYWORD"}, {"value", "VALUE"}}, {}};
    for (const Assignment& done : assignments) table.rows.push_back({done.keyword, done.value});
    if (console.IsJson())
        console.ShowJson({{"object", object}, {"changed", AsJson(table)}});
    else
        console.Show("changed", table);
}

class SetCommand : public SessionCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("OBJECT", &object_, "The object's name");
        arguments.Required("KEYWORD=VALUE", &texts_, "The keywords to change, all or none");
    }

    void CheckArguments() override { changes_ = ParseAssignments(texts_); }

  protected:
    ExitStatus Work(Session&, Console& console) override {
        change(console, object_, changes_);
        return kDone;
    }

  private:
    std::string object_;
    std::vector<std::string> texts_;
    std::vector<Assignment> changes_;
};

class SupervisorCommand : public SessionCommand {
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
    ExitStatus Work(Session&, Console& console) override {
        if (changes_.empty())
            Show(console);
        else
            Set(console);
        return kDone;
    }

  private:
    void Show(Console& console) {
        const OpenedObject object(kSupervisor, OAM_OPEN_READ);
        Table table{{{"keyword", "SETTING"}, {"value", "VALUE"}, {"description", "MEANING"}}, {}};
        for (const char* name : kSettings)
            table.rows.push_back(
                {name, object.Keyword(name).text, object.Qualifier(name, "Description").text});
        console.Show("settings", table);
    }

    void Set(Console& console) {
        change(console, kSupervisor, changes_);
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
