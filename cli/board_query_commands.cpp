// oam board list, info, status, lookup, send: questions about boards.

#include "arguments.h"
#include "board_lookup.h"
#include "command.h"
#include "console.h"
#include "file_content.h"
#include "lock_file.h"
#include "service.h"
#include "shadow_table.h"

namespace oam {
namespace {

Cell placeCell(const BoardPlace& place, const char* first) {
    return Cell(Json{{first, place.first}, {"slot", place.slot}}, place.Text());
}

Cell shelfCell(const BoardFacts& facts) {
    return facts.shelfSlot ? placeCell(*facts.shelfSlot, "shelf") : Cell(nullptr);
}

class AnsweredList : public ServiceCommand {
  protected:
    ExitStatus Work(Service& service, Console& console) override {
        Table table{{{"number", "NUMBER", true},
                     {"name", "NAME"},
                     {"product", "PRODUCT"},
                     {"pci", "BUS:SLOT"},
                     {"compactPci", "SHELF:SLOT"},
                     {"serialNumber", "SERIAL"},
                     {"autoStart", "START"},
                     {"autoStop", "STOP"}},
                    {}};
        for (const BoardFacts& facts : service.Boards())
            table.rows.push_back({facts.number, facts.name, facts.product,
                                  placeCell(facts.busSlot, "bus"), shelfCell(facts),
                                  facts.serialNumber, facts.autoStart, facts.autoStop});
        console.Show("boards", table);
        return kDone;
    }
};

// The list, or what the shadow has of it while a daemon is there that does not answer.
class ListCommand : public Command {
  public:
    bool ReachesHosts() const override { return true; }
    ExitStatus Run(Context& context) override try {
        return AnsweredList().Run(context);
    } catch (const Failure& failure) {
        // The shadow is this host's.
        if (context.host != nullptr) throw;
        const auto holder = LockFile::Holder(context.place);
        if (failure.Status() != kNoDaemon && !(holder && holder->command.starts_with("oamd")))
            throw;
        const ShadowTable shadow = ReadShadow();
        context.console.Note(std::string(failure.what()) + "; this is what the board shadow holds");
        context.console.Show("boards", shadow.boards);
        return kDone;
    }
};

// A command for one board of the table.
class BoardCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("NAME", &name_, "The board");
    }

  protected:
    ExitStatus Work(Service& service, Console& console) final {
        WorkOn(service, service.RequireBoard(name_), console);
        return kDone;
    }

    virtual void WorkOn(Service& service, const std::string& board, Console& console) = 0;

  private:
    std::string name_;
};

class InfoCommand : public BoardCommand {
  protected:
    void WorkOn(Service& service, const std::string& board, Console& console) override {
        const BoardFacts facts = service.Board(board);
        std::string addresses;
        for (const std::string& address : facts.macAddresses)
            addresses += (addresses.empty() ? "" : ", ") + address;
        console.Show(
            Record{{{"name", "name", facts.name},
                    {"number", "number", facts.number},
                    {"product", "product", facts.product},
                    {"driverName", "driver", facts.driverName},
                    {"driverBoardId", "board id in driver", facts.driverBoardId},
                    {"pci", "bus:slot", placeCell(facts.busSlot, "bus")},
                    {"compactPci", "shelf:slot", shelfCell(facts)},
                    {"ioAddress", "I/O address", Cell(facts.ioAddress, HexText(facts.ioAddress))},
                    {"serialNumber", "serial number", facts.serialNumber},
                    {"macAddresses", "MAC addresses", Cell(facts.macAddresses, addresses)},
                    {"autoStart", "automatic start", facts.autoStart},
                    {"autoStop", "automatic stop", facts.autoStop}}});
    }
};

class StatusCommand : public BoardCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        BoardCommand::DeclareArguments(arguments);
        arguments.Number("--selector", &given_, {},
                         "Which status, a number that the plug-in explains");
    }

  protected:
    void WorkOn(Service& service, const std::string& board, Console& console) override {
        const unsigned selector = given_.value_or(0);
        const int status = service.BoardStatus(board, selector);
        if (console.IsJson())
            console.ShowJson({{"board", board}, {"selector", selector}, {"status", status}});
        else
            console.Say(std::to_string(status));
    }

  private:
    std::optional<unsigned> given_;
};

class SendCommand : public BoardCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        BoardCommand::DeclareArguments(arguments);
        arguments.Optional("TEXT", &text_, "What to send");
        arguments.Optional("--file", &path_, "Send this file's content", "FILE");
    }

    void CheckArguments() override {
        if (text_.has_value() == path_.has_value()) throw UsageError("give a TEXT or --file FILE");
        if (!path_) return;
        FileContent file = LoadFile(*path_);
        if (!file.error.empty()) throw Failure("cannot read " + Quoted(*path_) + ": " + file.error);
        text_ = std::move(file.content);
    }

  protected:
    void WorkOn(Service& service, const std::string& board, Console& console) override {
        service.SendBuffer(board, *text_);
        if (console.IsJson())
            console.ShowJson({{"board", board}, {"sent", text_->size()}});
        else
            console.Say("sent " + std::to_string(text_->size()) + " bytes to " + Quoted(board));
    }

  private:
    std::optional<std::string> text_;
    std::optional<std::string> path_;
};

class LookupCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override { lookup_.Declare(arguments); }
    void CheckArguments() override { lookup_.Check(); }

  protected:
    ExitStatus Work(Service& service, Console& console) override {
        const Answer name = service.LookUpBoard(lookup_.Given());
        if (!name.IsGiven())
            throw Failure(name.code, "no such board", "`oam board list` lists the boards");
        if (console.IsJson())
            console.ShowJson({{"name", name.text}});
        else
            console.Value(name.text);
        return kDone;
    }

  private:
    BoardLookup lookup_;
};

constexpr CommandRow kRows[] = {
    {"board", "list", "List the configured boards", "oam board list\noam board list --json",
     Make<ListCommand>},
    {"board", "info", "All that the board table tells of a board", "oam board info \"Sim E1 left\"",
     Make<InfoCommand>},
    {"board", "status", "A board's status, as its plug-in tells it",
     "oam board status \"Sim E1 left\"\noam board status \"Sim E1 left\" --selector 1",
     Make<StatusCommand>},
    {"board", "lookup", "Find a board's name by one of its identities",
     "oam board lookup --number 0\n"
     "oam board lookup --bus-slot 1 2\n"
     "oam board lookup --product SIM-E1",
     Make<LookupCommand>},
    {"board", "send", "Send bytes to a board's plug-in",
     "oam board send \"Sim E1 left\" \"temperature 400\"\noam board send \"Sim E1 left\" --file "
     "command.txt",
     Make<SendCommand>},
};

}  // namespace

std::span<const CommandRow> BoardQueryCommands() { return kRows; }

}  // namespace oam
