// The engine's objects, owned, and its answers as failures.
#pragma once

#include <nats/nats.h>

#include <memory>
#include <string>

#include "failure.h"

namespace oam::fleet {

template <auto destroy>
struct Destroy {
    template <class T>
    void operator()(T* object) const {
        destroy(object);
    }
};

using OptionsHandle = std::unique_ptr<natsOptions, Destroy<natsOptions_Destroy>>;
using ConnectionHandle = std::unique_ptr<natsConnection, Destroy<natsConnection_Destroy>>;
using SubscriptionHandle = std::unique_ptr<natsSubscription, Destroy<natsSubscription_Destroy>>;
using MessageHandle = std::unique_ptr<natsMsg, Destroy<natsMsg_Destroy>>;
using StreamsHandle = std::unique_ptr<jsCtx, Destroy<jsCtx_Destroy>>;
using StreamInfoHandle = std::unique_ptr<jsStreamInfo, Destroy<jsStreamInfo_Destroy>>;
using ConsumerInfoHandle = std::unique_ptr<jsConsumerInfo, Destroy<jsConsumerInfo_Destroy>>;
using PublishAckHandle = std::unique_ptr<jsPubAck, Destroy<jsPubAck_Destroy>>;

// natsMsg* out = nullptr; ... Taken(out)
inline MessageHandle Taken(natsMsg* message) { return MessageHandle(message); }

std::string DataOf(const natsMsg& message);
// Empty when there is none.
std::string HeaderOf(natsMsg& message, const char* name);

// What the engine did not do; `status` is its word for why, `error` JetStream's (0: none).
class EngineFailure : public Failure {
  public:
    EngineFailure(const std::string& what, natsStatus status, int error = 0);

    natsStatus Engine() const { return engine_; }
    int StreamError() const { return error_; }

  private:
    natsStatus engine_;
    int error_;
};

// An EngineFailure unless it is NATS_OK.
void Require(natsStatus status, const std::string& what, int error = 0);

}  // namespace oam::fleet
