#pragma once

#include "oam/v1/sessions.grpc.pb.h"
#include "services/core.h"
#include "sessions/session_table.h"

namespace oam::server {

class SessionsService : public v1::Sessions::CallbackService {
  public:
    SessionsService(Core& core, SessionTable& table) : core_(core), table_(table) {}

    using Context = grpc::CallbackServerContext;
    using Reactor = grpc::ServerUnaryReactor;
    grpc::ServerWriteReactor<v1::AttachEvent>* Attach(Context* context,
                                                      const v1::AttachRequest* request) override;
    Reactor* Open(Context* context, const v1::OpenRequest* request,
                  v1::OpenResponse* response) override;
    Reactor* Close(Context* context, const v1::CloseRequest* request,
                   v1::CloseResponse* response) override;
    Reactor* GetKeyword(Context* context, const v1::GetKeywordRequest* request,
                        v1::ValueResponse* response) override;
    Reactor* SetKeyword(Context* context, const v1::SetKeywordRequest* request,
                        v1::EmptyResponse* response) override;
    Reactor* RemoveKeyword(Context* context, const v1::RemoveKeywordRequest* request,
                           v1::EmptyResponse* response) override;
    Reactor* GetQualifier(Context* context, const v1::GetQualifierRequest* request,
                          v1::ValueResponse* response) override;
    Reactor* SetQualifier(Context* context, const v1::SetQualifierRequest* request,
                          v1::EmptyResponse* response) override;
    Reactor* RemoveQualifier(Context* context, const v1::RemoveQualifierRequest* request,
                             v1::EmptyResponse* response) override;
    Reactor* ListEntries(Context* context, const v1::ListEntriesRequest* request,
                         v1::ListEntriesResponse* response) override;
    Reactor* GetProviderMode(Context* context, const v1::GetProviderModeRequest* request,
                             v1::ProviderModeResponse* response) override;
    Reactor* SetProviderMode(Context* context, const v1::SetProviderModeRequest* request,
                             v1::EmptyResponse* response) override;
    Reactor* RegisterAlerts(Context* context, const v1::SessionRequest* request,
                            v1::EmptyResponse* response) override;
    Reactor* UnregisterAlerts(Context* context, const v1::SessionRequest* request,
                              v1::EmptyResponse* response) override;

  private:
    // In the session's lane, with the session.
    Reactor* Take(Context* context, const Verb& verb, const std::string& session,
                  const std::string& object,
                  std::function<void(Session& session, const Call& call)> work);
    // The same with one of its handles.
    Reactor* TakeHandle(Context* context, const Verb& verb, const std::string& session,
                        std::uint64_t handle, std::function<void(const OpenedHandle& opened)> work);

    Core& core_;
    SessionTable& table_;
};

}  // namespace oam::server
