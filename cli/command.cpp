#include "command.h"

#include "console.h"
#include "session.h"

namespace oam {

void Command::DeclareArguments(Arguments&) {}

void Command::CheckArguments() {}

ExitStatus SessionCommand::Run(Context& context) {
    Session session(context.place, context.title, context.console);
    // The start may take long; who interrupted it wants no change any more.
    if (session.Interrupted().IsRequested()) return kInterrupted;
    const ExitStatus status = Work(session, context.console);
    session.ReportAlerts();
    context.console.Flush();
    return status;
}

}  // namespace oam
