// Requests from the fleet for this host.
//
// The server of the engine has let the request through, so its subject is true: who asks, and as
// which role. The host decides in the end: it asks its daemon in the caller's name ("certificate
// NAME" in the daemon's roles), and the daemon gives such a call the lower one of that caller's
// role and the agent's own. So nobody may more than the roles of the host say, whatever comes from
// the fleet, and the history names who did it.
#pragma once

#include <list>
#include <memory>
#include <stop_token>
#include <string>

#include "daemon/daemon_connection.h"
#include "fleet/agent/agent_figures.h"
#include "fleet/agent/command_answer.h"
#include "fleet/agent/daemon_watch.h"
#include "fleet/link/link.h"
#include "fleet/names.h"

namespace oam::fleet {

class CommandServer {
  public:
    CommandServer(console::DaemonConnection& daemon, const DaemonWatch& watch, std::string host,
                  AgentFigures& figures);
    ~CommandServer();

    // Until the link is lost or `stop` is requested. Requests under way go on without it: what they
    // have begun at the daemon goes on, too.
    void Serve(const std::shared_ptr<Link>& link, const std::stop_token& stop);
    // True when none is under way any more, within the time.
    bool Finish(std::chrono::milliseconds limit);

    // Whether this link's server lets the host itself ask hosts for something: then it lets every
    // host, and subjects tell nothing.
    static bool LetsHostsAsk(Link& link, const std::string& host);
    // Whether the denial is of that question, as it should be.
    static bool IsOfThatQuestion(const std::string& denial);

  private:
    struct Running;
    void Take(const std::shared_ptr<Link>& link, natsMsg& request);
    void RefuseForNow(CommandAnswer& answer, const std::string& rule);
    void Do(const std::shared_ptr<CommandAnswer>& answer);
    grpc::Status Call(CommandAnswer& answer, const CommandName& name);
    grpc::Status Stream(CommandAnswer& answer, const console::Route& route,
                        const std::string& request, const console::Identity& identity);
    grpc::Status Import(CommandAnswer& answer, const console::Route& route,
                        const std::string& request, const console::Identity& identity);
    void Tend();

    console::DaemonConnection& daemon_;
    const DaemonWatch& watch_;
    const std::string host_;
    AgentFigures& figures_;
    // Of the thread that serves.
    std::list<std::shared_ptr<Running>> running_;
};

}  // namespace oam::fleet
