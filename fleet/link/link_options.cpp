#include "fleet/link/link_options.h"

#include <CLI/CLI.hpp>

namespace oam::fleet {

void AddLinkOptions(CLI::App& app, LinkSettings* settings) {
    app.add_option("--server", settings->servers,
                   "A server of the engine, tls://HOST:PORT; several: any of them")
        ->type_name("URL")
        ->allow_extra_args(false)
        ->delimiter(',');
    app.add_option("--certificate", settings->certificate, "Who this is to the server, PEM")
        ->type_name("FILE");
    app.add_option("--key", settings->key, "The certificate's key, PEM")->type_name("FILE");
    app.add_option("--authorities", settings->authorities,
                   "Who signs the servers' certificates, PEM")
        ->type_name("FILE");
    app.add_option("--user", settings->user, "Instead of a certificate: a user of the server")
        ->type_name("NAME");
    app.add_option("--password-file", settings->passwordFile, "The user's password")
        ->type_name("FILE");
    app.add_option("--credentials", settings->credentials,
                   "Instead of both: a signed user with its key, as the engine's tools make it")
        ->type_name("FILE");
    app.add_option("--domain", settings->domain, "The streams' domain, when they have one")
        ->type_name("NAME");
}

}  // namespace oam::fleet
