// oam objects, show, get: reading the configuration.
#include "arguments.h"
#include "command.h"
#include "config_scan.h"
#include "console.h"
#include "service.h"

namespace oam {
namespace {

class ObjectsCommand : public ServiceCommand {
  protected:
    ExitStatus Work(Service& service, Console& console) override {
        const auto files =
            IsOnAnotherHost() ? decltype(DataFilesByObject(Place()))() : DataFilesByObject(Place());
        Table table{{{"name", "NAME"}, {"kind", "KIND"}, {"file", "DATA FILE"}}, {}};
        for (const std::string& name : service.ObjectNames()) {
            const auto file = files.find(name);
            table.rows.push_back(
                {name, KindText(KindOf(name)), file == files.end() ? Json() : Json(file->second)});
        }
        console.Show("objects", table);
        return kDone;
    }
};

class ShowCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("OBJECT", &name_, "The object's name");
        arguments.Flag("--qualifiers", &qualifiers_, "Show what describes each keyword, too");
    }

  protected:
    ExitStatus Work(Service& service, Console& console) override {
        const auto facts =
            qualifiers_ ? service.DescribeObject(name_, {}) : service.ReadObject(name_, {});
        Table table{{{"keyword", "KEYWORD"}, {"value", "VALUE"}}, {}};
        Json keywords = Json::array();
        for (const auto& [keyword, value, qualifiers] : facts) {
            Json members{{"keyword", keyword}};
            if (value.IsGiven())
                members["value"] = value.text;
            else
                members["error"] = CodeText(value.code);
            table.rows.push_back(
                {keyword, value.IsGiven() ? value.text : "(" + CodeText(value.code) + ")"});
            for (const auto& [name, text] : qualifiers) table.rows.push_back({"  ?" + name, text});
            if (qualifiers_) members["qualifiers"] = qualifiers;
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

class GetCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("OBJECT", &name_, "The object's name");
        arguments.Required("KEYWORD", &keywords_, "The keywords to read");
        arguments.Optional("--qualifier", &qualifier_,
                           "Read this qualifier of the keywords instead of their values", "NAME");
    }

  protected:
    // All or nothing: a script that reads lines must not take one value for another.
    ExitStatus Work(Service& service, Console& console) override {
        const auto facts = qualifier_ ? service.ReadQualifier(name_, keywords_, *qualifier_)
                                      : service.ReadObject(name_, keywords_);
        Table table{{{"keyword", "KEYWORD"}, {"value", "VALUE"}}, {}};
        for (const KeywordFacts& keyword : facts) {
            if (!keyword.value.IsGiven())
                throw Failure(keyword.value.code,
                              "cannot read " + Quoted(keyword.name) + " of " + Quoted(name_),
                              "`oam show` lists the object's keywords");
            table.rows.push_back({keyword.name, keyword.value.text});
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
