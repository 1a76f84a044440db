// oam plugin list, shadow, text: what the service has loaded, published and named.

#include "arguments.h"
#include "command.h"
#include "console.h"
#include "number.h"
#include "oam/shadow.h"
#include "object_kind.h"
#include "opened_object.h"
#include "session.h"

namespace oam {
namespace {

// A list keyword of an object.
std::vector<std::string> elements(const OpenedObject& object, const std::string& list) {
    std::vector<std::string> values;
    const unsigned count = object.Count(list);
    for (unsigned i = 0; i < count; ++i) values.push_back(object.Keyword(Element(list, i)).text);
    return values;
}

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : ", ") + text;
    return all;
}

class PluginListCommand : public SessionCommand {
  protected:
    ExitStatus Work(Session&, Console& console) override {
        Table table{{{"name", "NAME"}, {"kind", "KIND"}, {"products", "PRODUCTS"}}, {}};
        std::vector<std::string> plugins, components;
        {
            const OpenedObject supervisor("Supervisor", OAM_OPEN_READ);
            plugins = elements(supervisor, "BoardPlugins");
            components = elements(supervisor, "ExtendedManagementComponents");
        }
        for (const std::string& name : plugins) {
            const auto products = elements(OpenedObject(name, OAM_OPEN_READ), "Products");
            table.rows.push_back(
                {name, KindText(ObjectKind::kPlugin), Cell(products, joined(products))});
        }
        for (const std::string& name : components)
            table.rows.push_back({name, KindText(ObjectKind::kComponent), Cell(nullptr, "")});
        console.Show("plugins", table);
        return kDone;
    }
};

// The table that a service published last, whichever process that was.
class ShadowCommand : public Command {
  public:
    ExitStatus Run(Context& context) override {
        const unsigned code = oamShadowInit();
        if (code) throw Failure(code, "the board shadow cannot be opened");
        const Table boards = ReadBoards();
        bool isUsingVx = false;
        const unsigned read = oamShadowBoardGetIsUsingVxPlugin(0, &isUsingVx);
        (void)oamShadowExit();
        if (read) throw Failure(read, "the board shadow cannot be read");
        if (context.console.IsJson()) {
            context.console.ShowJson({{"boards", AsJson(boards)}, {"usesVxPlugin", isUsingVx}});
        } else {
            context.console.Show("boards", boards);
            context.console.Say(std::string("vxplugin.bpi: ") + (isUsingVx ? "yes" : "no"));
        }
        return kDone;
    }

  private:
    static Table ReadBoards() {
        Table table{{{"number", "NUMBER", true},
                     {"name", "NAME"},
                     {"driverName", "DRIVER"},
                     {"driverBoardId", "BOARD ID"},
                     {"isALaw", "A-LAW"}},
                    {}};
        const auto names = AskNames([](int index, char* buffer, unsigned size) {
            return oamShadowBoardEnum(0, index, buffer, size);
        });
        for (const std::string& name : names) {
            unsigned number = 0;
            bool isALaw = false;
            // The longest that a record holds.
            char driver[129] = "", id[65] = "";
            const char* board = name.c_str();
            if (oamShadowBoardGetNumber(0, board, &number) != OAM_SUCCESS) continue;
            (void)oamShadowBoardGetDriverIDs(0, board, driver, sizeof driver, id, sizeof id);
            (void)oamShadowBoardIsUsingALaw(0, board, &isALaw);
            table.rows.push_back({number, name, driver, id, isALaw});
        }
        return table;
    }
};

constexpr struct {
    unsigned code;
    const char* name;
} kCodes[] = {
#define OAM_CODE(name, value) {value, #name},
#include "oam/codes.def"
#undef OAM_CODE
};

class TextCommand : public Command {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("CODE", &given_, "A code, decimal or with 0x, or a code's name");
    }

    ExitStatus Run(Context& context) override {
        for (const auto& row : kCodes) {
            const bool isCode = ParseNumber(given_) == row.code;
            if (!isCode && !SameName(given_, row.name)) continue;
            if (context.console.IsJson())
                context.console.ShowJson(
                    {{"code", row.code}, {"hex", HexText(row.code)}, {"name", row.name}});
            else
                context.console.Say(isCode ? row.name : HexText(row.code));
            return kDone;
        }
        throw Failure("the service has no code " + Quoted(given_),
                      "plug-ins and components have codes of their own, which only they know");
    }

  private:
    std::string given_;
};

constexpr CommandRow kRows[] = {
    {"plugin", "list", "List the loaded plug-ins with their products, and the components",
     "oam plugin list", Make<PluginListCommand>},
    {nullptr, "shadow", "Show the board table in shared memory", "oam shadow", Make<ShadowCommand>},
    {nullptr, "text", "Name a code, or number a name",
     "oam text 0x40000004\noam text OAMERR_NOT_FOUND", Make<TextCommand>},
};

}  // namespace

std::span<const CommandRow> InfoCommands() { return kRows; }

}  // namespace oam
