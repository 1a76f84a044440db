// oam detect, board add, create, delete: which boards there are.
#include "arguments.h"
#include "board_selection.h"
#include "command.h"
#include "console.h"
#include "service.h"

namespace oam {
namespace {

void showNames(Console& console, const char* key, const char* verb,
               const std::vector<std::string>& names) {
    if (console.IsJson()) return console.ShowJson({{key, names}});
    for (const std::string& name : names) console.Say(std::string(verb) + ' ' + Quoted(name));
}

class DetectCommand : public ServiceCommand {
  protected:
    ExitStatus Work(Service& service, Console& console) override {
        Table table{{{"name", "NAME"},
                     {"product", "PRODUCT"},
                     {"bus", "BUS", true},
                     {"slot", "SLOT", true},
                     {"configuredAs", "CONFIGURED AS"}},
                    {}};
        for (const DetectedBoard& board : service.DetectBoards())
            table.rows.push_back({board.name, board.product, board.bus, board.slot,
                                  board.configuredAs.empty() ? Json() : Json(board.configuredAs)});
        console.Show("detected", table);
        return kDone;
    }
};

class AddCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        selection_.Declare(arguments, "A detected board, as `oam detect` names it");
    }

    void CheckArguments() override { selection_.CheckOne(); }

  protected:
    ExitStatus Work(Service& service, Console& console) override {
        const auto [added, code] = service.AddDetectedBoards(selection_.One());
        if (code) throw Failure(code, "no board was added", "`oam detect` lists what is there");
        showNames(console, "added", "added", added);
        return kDone;
    }

  private:
    BoardSelection selection_;
};

class CreateCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("PRODUCT", &product_, "A product that a plug-in serves");
    }

  protected:
    ExitStatus Work(Service& service, Console& console) override {
        const std::string name = service.CreateBoard(product_);
        if (console.IsJson())
            console.ShowJson({{"created", name}});
        else
            console.Say("created " + Quoted(name));
        return kDone;
    }

  private:
    std::string product_;
};

class DeleteCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        selection_.Declare(arguments, "A board");
    }

    void CheckArguments() override {
        selection_.CheckOne();
        for (const std::string& name : selection_.Names())
            if (KindOf(name) != ObjectKind::kBoard) throw UsageError(Quoted(name) + " is no board");
    }

  protected:
    ExitStatus Work(Service& service, Console& console) override {
        const auto [deleted, code] = service.DeleteBoards(selection_.One());
        showNames(console, "deleted", "deleted", deleted);
        if (code)
            throw Failure(code,
                          selection_.IsAll() ? "not all boards could be deleted"
                                             : "cannot delete " + Quoted(selection_.Names()[0]),
                          "`oam objects` lists what there is");
        return kDone;
    }

  private:
    BoardSelection selection_;
};

constexpr CommandRow kRows[] = {
    {nullptr, "detect", "Look what boards are in the chassis", "oam detect", Make<DetectCommand>},
    {"board", "add", "Add detected boards to the configuration",
     "oam board add --all\noam board add \"Sim E1 left\"", Make<AddCommand>},
    {"board", "create", "Add a board of a product, wherever it is", "oam board create SIM-E1",
     Make<CreateCommand>},
    {"board", "delete", "Take boards out of the configuration",
     "oam board delete \"SIM-E1 0\"\noam board delete --all", Make<DeleteCommand>},
};

}  // namespace

std::span<const CommandRow> BoardCommands() { return kRows; }

}  // namespace oam
