// oam detect, board add, create, delete: which boards there are.
#include <algorithm>

#include "arguments.h"
#include "board_selection.h"
#include "command.h"
#include "console.h"
#include "detected_boards.h"
#include "oam/entry.h"
#include "object_kind.h"
#include "session.h"
#include "text_answer.h"

namespace oam {
namespace {

// Also those that no plug-in serves now, which the board table does not know.
std::vector<std::string> boardObjects() {
    auto names = AskNames(_oamDbEnumObjects);
    std::erase_if(names, [](const auto& name) { return KindOf(name) != ObjectKind::kBoard; });
    return names;
}

std::vector<std::string> newIn(const std::vector<std::string>& names,
                               const std::vector<std::string>& before) {
    std::vector<std::string> added;
    std::set_difference(names.begin(), names.end(), before.begin(), before.end(),
                        std::back_inserter(added), NameLess());
    return added;
}

void showNames(Console& console, const char* key, const char* verb,
               const std::vector<std::string>& names) {
    if (console.IsJson()) return console.ShowJson({{key, names}});
    for (const std::string& name : names) console.Say(std::string(verb) + ' ' + Quoted(name));
}

// A creation that failed half-way may leave this thread holding the service's table lock until it
// next enters the service; a question is enough.
void enterService() {
    char name[2];
    (void)_oamBoardEnum(0, name, sizeof name);
}

class DetectCommand : public SessionCommand {
  protected:
    ExitStatus Work(Session&, Console& console) override {
        Table table{{{"name", "NAME"},
                     {"product", "PRODUCT"},
                     {"bus", "BUS", true},
                     {"slot", "SLOT", true},
                     {"configuredAs", "CONFIGURED AS"}},
                    {}};
        for (const DetectedBoard& board : DetectBoards())
            table.rows.push_back({board.name, board.product, board.bus, board.slot,
                                  board.configuredAs.empty() ? Json() : Json(board.configuredAs)});
        console.Show("detected", table);
        return kDone;
    }
};

class AddCommand : public SessionCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        selection_.Declare(arguments, "A detected board, as `oam detect` names it");
    }

    void CheckArguments() override { selection_.CheckOne(); }

  protected:
    ExitStatus Work(Session& session, Console& console) override {
        // Why a board is not added, the service tells in alerts of this source.
        session.Listen([](const Alert& alert) { return alert.source == "AddDetectedBoard"; });
        (void)DetectBoards();
        const auto before = boardObjects();
        const unsigned code =
            _oamAddDetectedBoard(selection_.IsAll() ? nullptr : selection_.Names()[0].c_str());
        if (code) enterService();
        session.ReportAlerts();
        if (code) throw Failure(code, "no board was added", "`oam detect` lists what is there");
        showNames(console, "added", "added", newIn(boardObjects(), before));
        return kDone;
    }

  private:
    BoardSelection selection_;
};

class CreateCommand : public SessionCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("PRODUCT", &product_, "A product that a plug-in serves");
    }

  protected:
    ExitStatus Work(Session&, Console& console) override {
        char name[128] = "";
        const unsigned code = _oamCreateBoard(product_.c_str(), name, sizeof name);
        if (code) {
            enterService();
            throw Failure(code, "cannot create a board of product " + Quoted(product_),
                          "`oam plugin list` lists the products");
        }
        if (console.IsJson())
            console.ShowJson({{"created", name}});
        else
            console.Say("created " + Quoted(name));
        return kDone;
    }

  private:
    std::string product_;
};

class DeleteCommand : public SessionCommand {
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
    ExitStatus Work(Session&, Console& console) override {
        const auto before = boardObjects();
        const unsigned code =
            _oamDeleteBoard(selection_.IsAll() ? nullptr : selection_.Names()[0].c_str());
        showNames(console, "deleted", "deleted", newIn(before, boardObjects()));
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
