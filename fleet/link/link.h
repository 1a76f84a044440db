// One connection to the engine, for as long as it lasts.
//
// It does not connect again by itself: whoever needs one makes another, and begins anew with all
// that a server forgets with a connection. So certificates are read again each time, and each
// server is looked at before anything is said to it.
//
// A server that lets anyone in is refused: besides its own connection a link tries another one
// without saying who it is, and that one must fail.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fleet/link/denials.h"
#include "fleet/link/handles.h"
#include "fleet/link/link_settings.h"

namespace oam::fleet {

class Link {
  public:
    // A Failure when no server can be reached, none lets this client in, or the one that does lets
    // in everybody. `client` is the name that this client has for the server (its inbox).
    Link(const LinkSettings& settings, const std::string& client);
    ~Link();
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    // False for ever after the connection was lost or closed.
    bool IsUp() const;
    // Ends it, and all waits for it. Any thread.
    void Close();
    // What the server has denied since the last question ("Permissions Violation for Publish to
    // ..."). When it denies much at once some may be told twice and others not at all.
    std::vector<std::string> TakeDenials();

    // The server's word for where it is.
    std::string Server() const;
    std::size_t LargestMessage() const;

    // As far as this machine's buffer: what must not be lost wants an acknowledgement.
    void Publish(const std::string& subject, std::string_view data);
    void Publish(natsMsg& message);
    // All that was published has reached the server.
    void Flush();
    // An EngineFailure when nobody answers in time.
    MessageHandle Request(const std::string& subject, std::string_view data,
                          std::chrono::milliseconds limit);

    // Whoever waits for messages of it is woken when the link is lost.
    SubscriptionHandle Subscribe(const std::string& subject);
    // A subject at which only this client hears.
    std::string NewInbox() const;

    natsConnection* Get() const { return connection_.get(); }
    jsCtx* Streams() const { return streams_.get(); }
    // "$JS.API." or a domain's.
    const std::string& StreamApi() const { return streamApi_; }
    bool HasDomain() const { return streamApi_ != kOwnApi; }

  private:
    static constexpr const char* kOwnApi = "$JS.API.";

    const std::string client_;
    const std::string streamApi_;
    Denials denials_;
    ConnectionHandle connection_;
    StreamsHandle streams_;
};

}  // namespace oam::fleet
