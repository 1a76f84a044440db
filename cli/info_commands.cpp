// oam shadow, text: what a service has published and how codes are named.

#include "arguments.h"
#include "command.h"
#include "console.h"
#include "installation.h"
#include "interruption.h"
#include "number.h"
#include "open_service.h"
#include "shadow_table.h"
#include "text_answer.h"

namespace oam {
namespace {

// The table that a service published last, whichever process that was.
class ShadowCommand : public Command {
  public:
    ExitStatus Run(Context& context) override {
        const ShadowTable shadow = ReadShadow();
        if (context.console.IsJson()) {
            context.console.ShowJson(
                {{"boards", AsJson(shadow.Boards())}, {"usesVxPlugin", shadow.isUsingVx}});
        } else {
            context.console.Show("boards", shadow.Boards());
            context.console.Say(std::string("vxplugin.bpi: ") + (shadow.isUsingVx ? "yes" : "no"));
        }
        return kDone;
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
            if (ParseNumber(given_) == row.code || SameName(given_, row.name))
                return Show(context.console, row.code, row.name);
        }
        const auto code = ParseNumber(given_);
        if (!code) throw Failure("the service has no code " + Quoted(given_));
        return Show(context.console, *code, AskModules(context, *code));
    }

  private:
    ExitStatus Show(Console& console, unsigned code, const std::string& name) const {
        if (console.IsJson())
            console.ShowJson({{"code", code}, {"hex", HexText(code)}, {"name", name}});
        else
            console.Say(ParseNumber(given_) ? name : HexText(code));
        return kDone;
    }

    // Plug-ins and components have codes of their own, which only they know.
    static std::string AskModules(Context& context, unsigned code) {
        const Interruption interruption;
        const std::string name = OpenService(context, interruption)->CodeName(code);
        if (name.empty())
            throw Failure(
                "nobody has the code " + HexText(code),
                "neither the service nor a plug-in or component of " + context.place.Directory());
        return name;
    }

    std::string given_;
};

constexpr CommandRow kRows[] = {
    {nullptr, "shadow", "Show the board table in shared memory", "oam shadow", Make<ShadowCommand>},
    {nullptr, "text", "Name a code, or number a name",
     "oam text 0x40000004\noam text OAMERR_NOT_FOUND\noam text 0x50000001", Make<TextCommand>},
};

}  // namespace

std::span<const CommandRow> InfoCommands() { return kRows; }

}  // namespace oam
