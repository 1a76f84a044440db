// oam objects, show, get: reading the configuration.
#include <map>
#include <set>

#include "arguments.h"
#include "command.h"
#include "config_scan.h"
#include "console.h"
#include "keyword_walk.h"
#include "object_kind.h"
#include "opened_object.h"
#include "session.h"

namespace oam {
namespace {

class ObjectsCommand : public SessionCommand {
  protected:
    ExitStatus Work(Session& session, Console& console) override {
        const auto files = DataFilesByObject(session.Place());
        Table table{{{"name", "NAME"}, {"kind", "KIND"}, {"file", "DATA FILE"}}, {}};
        for (const std::string& name : AskNames(_oamDbEnumObjects)) {
            const auto file = files.find(name);
            table.rows.push_back(
                {name, KindText(KindOf(name)), file == files.end() ? Json() : Json(file->second)});
        }
        console.Show("objects", table);
        return kDone;
    }
};

// The qualifiers of a keyword: those stored with it, and those that every keyword answers.
std::map<std::string, std::string, NameLess> qualifiersOf(const OpenedObject& object,
                                                          const std::vector<std::string>& entries,
                                                          const std::string& keyword) {
    std::set<std::string, NameLess> names{"Type", "Description", "ReadOnly"};
    for (const std::string& entry : entries) {
        const size_t mark = entry.find('?');
        if (mark != std::string::npos && SameName(entry.substr(0, mark), keyword))
            names.insert(entry.substr(mark + 1));
    }
    const unsigned choices = BoundedCount(object.Qualifier(keyword, "Choices.Count"));
    for (unsigned i = 0; i < choices; ++i) names.insert(Element("Choices", i));
    std::map<std::string, std::string, NameLess> qualifiers;
    for (const std::string& name : names) {
        const Answer answer = object.Qualifier(keyword, name);
        if (answer.IsGiven()) qualifiers[name] = answer.text;
    }
    return qualifiers;
}

class ShowCommand : public SessionCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("OBJECT", &name_, "The object's name");
        arguments.Flag("--qualifiers", &qualifiers_, "Show what describes each keyword, too");
    }

  protected:
    ExitStatus Work(Session&, Console& console) override {
        const OpenedObject object(name_, OAM_OPEN_READ);
        const auto entries = object.Entries();
        Table table{{{"keyword", "KEYWORD"}, {"value", "VALUE"}}, {}};
        Json keywords = Json::array();
        for (const std::string& keyword : AllKeywords(object)) {
            const Answer value = object.Keyword(keyword);
            Json members{{"keyword", keyword}};
            if (value.IsGiven())
                members["value"] = value.text;
            else
                members["error"] = CodeText(value.code);
            table.rows.push_back(
                {keyword, value.IsGiven() ? value.text : "(" + CodeText(value.code) + ")"});
            if (qualifiers_) {
                const auto qualifiers = qualifiersOf(object, entries, keyword);
                for (const auto& [name, text] : qualifiers)
                    table.rows.push_back({"  ?" + name, text});
                members["qualifiers"] = qualifiers;
            }
            keywords.push_back(std::move(members));
        }
        if (console.IsJson())
            console.ShowJson({{"object", name_}, {"keywords", keywords}});
        else
            console.Show("keywords", table);
        return kDone;
    }

  private:
    std::string name_;
    bool qualifiers_ = false;
};

class GetCommand : public SessionCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("OBJECT", &name_, "The object's name");
        arguments.Required("KEYWORD", &keywords_, "The keywords to read");
        arguments.Optional("--qualifier", &qualifier_,
                           "Read this qualifier of the keywords instead of their values", "NAME");
    }

  protected:
    // All or nothing: a script that reads lines must not take one value for another.
    ExitStatus Work(Session&, Console& console) override {
        const OpenedObject object(name_, OAM_OPEN_READ);
        Table table{{{"keyword", "KEYWORD"}, {"value", "VALUE"}}, {}};
        for (const std::string& keyword : keywords_) {
            const Answer answer =
                qualifier_ ? object.Qualifier(keyword, *qualifier_) : object.Keyword(keyword);
            if (!answer.IsGiven())
                throw Failure(answer.code,
                              "cannot read " + Quoted(keyword) + " of " + Quoted(name_),
                              "`oam show` lists the object's keywords");
            table.rows.push_back({keyword, answer.text});
        }
        if (table.rows.size() == 1 && !console.IsJson())
            console.Value(table.rows[0][1].text);
        else if (console.IsJson())
            console.ShowJson({{"object", name_}, {"keywords", AsJson(table)}});
        else
            console.Show("keywords", table);
        return kDone;
    }

  private:
    std::string name_;
    std::vector<std::string> keywords_;
    std::optional<std::string> qualifier_;
};

constexpr CommandRow kRows[] = {
    {nullptr, "objects", "List all objects", "oam objects\noam objects --json",
     Make<ObjectsCommand>},
    {nullptr, "show", "Show an object with all its keywords",
     "oam show Supervisor\noam show Supervisor --qualifiers", Make<ShowCommand>},
    {nullptr, "get", "Read keywords of an object",
     "oam get Supervisor Version.Major\n"
     "oam get Supervisor Version.Major Version.Minor\n"
     "oam get Supervisor AutoStartEnabled --qualifier Description",
     Make<GetCommand>},
};

}  // namespace

std::span<const CommandRow> ObjectCommands() { return kRows; }

}  // namespace oam
