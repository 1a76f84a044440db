// oam board list, info, status, lookup, send: questions about boards.

#include <algorithm>
#include <functional>

#include "arguments.h"
#include "board_lookup.h"
#include "command.h"
#include "console.h"
#include "file_content.h"
#include "service.h"
#include "shadow_table.h"
#include "zol/zol.h"

namespace oam {
namespace {

Cell placeCell(const BoardPlace& place, const char* first) {
    return Cell(Json{{first, place.first}, {"slot", place.slot}}, place.Text());
}

Cell shelfCell(const BoardFacts& facts) {
    return facts.shelfSlot ? placeCell(*facts.shelfSlot, "shelf") : Cell(nullptr);
}

class ListCommand : public ServiceCommand {
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

    bool ShowShadow(Console& console) override {
        console.Show("boards", ReadShadow().Boards());
        return true;
    }
};

bool isSame(const std::string& left, const std::string& right) {
    return zolStricmp(left.c_str(), right.c_str()) == 0;
}

// The shadow has no room for all boards: one that it does not hold may be there all the same.
ShadowBoard findInShadow(const std::function<bool(const ShadowBoard&)>& isMeant) {
    const ShadowTable shadow = ReadShadow();
    const auto found = std::find_if(shadow.boards.begin(), shadow.boards.end(), isMeant);
    if (found == shadow.boards.end()) throw Failure("the board shadow holds no such board");
    return *found;
}

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

    const std::string& Name() const { return name_; }

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

    bool ShowShadow(Console& console) override {
        const ShadowBoard board =
            findInShadow([this](const ShadowBoard& one) { return isSame(one.name, Name()); });
        console.Show(Record{{{"name", "name", board.name},
                             {"number", "number", board.number},
                             {"driverName", "driver", board.driverName},
                             {"driverBoardId", "board id in driver", board.driverBoardId},
                             {"isALaw", "A-law", board.isALaw}}});
        return true;
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

void showName(const std::string& name, Console& console) {
    if (console.IsJson())
        console.ShowJson({{"name", name}});
    else
        console.Value(name);
}

class LookupCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override { lookup_.Declare(arguments); }
    void CheckArguments() override { lookup_.Check(); }

  protected:
    ExitStatus Work(Service& service, Console& console) override {
        const Answer name = service.LookUpBoard(lookup_.Given());
        if (!name.IsGiven())
            throw Failure(name.code, "no such board", "`oam board list` lists the boards");
        showName(name.text, console);
        return kDone;
    }

    bool ShowShadow(Console& console) override {
        const BoardIdentity meant = lookup_.Given();
        const auto* const number = std::get_if<ByNumber>(&meant);
        const auto* const driver = std::get_if<ByDriver>(&meant);
        if (number == nullptr && driver == nullptr) return false;
        const ShadowBoard board = findInShadow([&](const ShadowBoard& one) {
            return number != nullptr ? one.number == number->number
                                     : isSame(one.driverName, driver->driverName) &&
                                           isSame(one.driverBoardId, driver->driverBoardId);
        });
        showName(board.name, console);
        return true;
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
