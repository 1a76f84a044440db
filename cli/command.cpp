#include "command.h"

#include <optional>

#include "console.h"
#include "interruption.h"
#include "open_service.h"

namespace oam {

void Command::DeclareArguments(Arguments&) {}

void Command::CheckArguments() {}

bool ServiceCommand::IsInterrupted() const { return interruption_->IsRequested(); }

ExitStatus ServiceCommand::Run(Context& context) try {
    return RunOnService(context);
} catch (const Failure& failure) {
    // The shadow is this host's.
    if (failure.Status() != kNoDaemon || context.host != nullptr) throw;
    try {
        if (!ShowShadow(context.console)) throw;
    } catch (const Failure& shadow) {
        if (shadow.Status() == kNoDaemon) throw;
        throw Failure(std::string(failure.what()) + "; " + shadow.what(), failure.Advice(),
                      kNoDaemon);
    }
    context.console.Note(std::string(failure.what()) + "; this is what the board shadow holds");
    return kDone;
}

ExitStatus ServiceCommand::RunOnService(Context& context) {
    std::optional<Interruption> own;
    const Interruption& interruption =
        context.interruption != nullptr ? *context.interruption : own.emplace();
    context_ = &context;
    interruption_ = &interruption;
    const auto service =
        NeedsDaemon() ? OpenDaemon(context, interruption) : OpenService(context, interruption);
    // The start may take long; who interrupted it wants no change any more.
    if (IsInterrupted()) return kInterrupted;
    const ExitStatus status = Work(*service, context.console);
    // Before the service's exit, which may take long.
    context.console.Flush();
    return status;
}

}  // namespace oam
