#include "services/sessions_service.h"

#include "configuration/configuration_keeper.h"
#include "failure.h"
#include "oam/entry.h"
#include "services/attach_stream.h"
#include "text_answer.h"
#include "transport/refusal_status.h"

namespace oam::server {
namespace {

constexpr Verb kAttach = {"Attach", Role::kViewer};
constexpr Verb kOpenRead = {"Open", Role::kViewer};
constexpr Verb kOpenWrite = {"Open for writing", Role::kConfigurator};
constexpr Verb kOpenDatabase = {"Open as provider", Role::kAdmin};
constexpr Verb kClose = {"Close", Role::kViewer};
constexpr Verb kGetKeyword = {"GetKeyword", Role::kViewer};
constexpr Verb kSetKeyword = {"SetKeyword", Role::kConfigurator};
constexpr Verb kRemoveKeyword = {"RemoveKeyword", Role::kAdmin};
constexpr Verb kGetQualifier = {"GetQualifier", Role::kViewer};
constexpr Verb kSetQualifier = {"SetQualifier", Role::kAdmin};
constexpr Verb kRemoveQualifier = {"RemoveQualifier", Role::kAdmin};
constexpr Verb kListEntries = {"ListEntries", Role::kViewer};
constexpr Verb kGetProviderMode = {"GetProviderMode", Role::kViewer};
constexpr Verb kSetProviderMode = {"SetProviderMode", Role::kAdmin};
constexpr Verb kRegister = {"RegisterAlerts", Role::kViewer};
constexpr Verb kUnregister = {"UnregisterAlerts", Role::kViewer};

grpc::Status statusOf(const SessionRefusal& refusal) {
    return Refused(refusal.Which() == SessionRefusal::Kind::kTooMany
                       ? grpc::StatusCode::RESOURCE_EXHAUSTED
                       : grpc::StatusCode::NOT_FOUND,
                   refusal.what());
}

class Refusing : public grpc::ServerWriteReactor<v1::AttachEvent> {
  public:
    explicit Refusing(const grpc::Status& status) { Finish(status); }
    void OnDone() override { delete this; }
};

void require(unsigned code, const char* verb, const OpenedHandle& opened,
             const std::string& keyword, const std::string& value = {}) {
    if (code)
        throw Failure(code, std::string("cannot ") + verb + ' ' + Quoted(keyword) + " of " +
                                Quoted(opened.object))
            .About({opened.object, keyword, value});
}

// Of a handle, for a denial: which object it is, its session knows.
std::string handleText(std::uint64_t handle) { return "handle " + std::to_string(handle); }

std::string keywordOf(const std::string& bytes) { return TextOf(bytes, "the keyword"); }
std::string qualifierOf(const std::string& bytes) { return TextOf(bytes, "the qualifier"); }
std::string valueOf(const std::string& bytes) { return TextOf(bytes, "the value"); }

}  // namespace

grpc::ServerWriteReactor<v1::AttachEvent>* SessionsService::Attach(Context* context,
                                                                   const v1::AttachRequest*) {
    Call call;
    const grpc::Status admitted = core_.calls.Admit(*context, kAttach, "", &call);
    if (!admitted.ok()) return new Refusing(admitted);
    try {
        return NewAttachStream(core_, table_, call);
    } catch (const SessionRefusal& refusal) {
        return new Refusing(statusOf(refusal));
    }
}

SessionsService::Reactor* SessionsService::Take(
    Context* context, const Verb& verb, const std::string& id, const std::string& object,
    std::function<void(Session& session, const Call& call)> work) {
    const Target target{object, "session " + id};
    return core_.calls.Take(context, verb, target, [=, this](const Call& call) {
        try {
            work(*table_.Find(id, call.user), call);
            return grpc::Status::OK;
        } catch (const SessionRefusal& refusal) {
            return statusOf(refusal);
        }
    });
}

SessionsService::Reactor* SessionsService::TakeHandle(
    Context* context, const Verb& verb, const std::string& id, std::uint64_t handle,
    std::function<void(const OpenedHandle& opened)> work) {
    return Take(context, verb, id, handleText(handle),
                [=](Session& session, const Call&) { work(session.Find(handle)); });
}

SessionsService::Reactor* SessionsService::Open(Context* context, const v1::OpenRequest* request,
                                                v1::OpenResponse* response) {
    const Verb& verb = request->provider() || request->database() ? kOpenDatabase
                       : request->write()                         ? kOpenWrite
                                                                  : kOpenRead;
    const auto open = [=](Session& session, const Call&) {
        const unsigned mode = (request->write() ? unsigned{OAM_OPEN_WRITE} : 0U) |
                              (request->provider() ? unsigned{OAM_OPEN_PROVIDER} : 0U);
        response->set_handle(
            session.Open(TextOf(request->name(), "the object's name"), mode, request->database()));
    };
    return Take(context, verb, request->session(), request->name(), open);
}

SessionsService::Reactor* SessionsService::Close(Context* context, const v1::CloseRequest* request,
                                                 v1::CloseResponse* response) {
    const auto work = [=, this](Session& session, const Call& call) {
        const OpenedHandle opened = session.Take(request->handle());
        const auto close = [&] {
            const unsigned code = opened.isDatabase          ? _oamDbCloseObject(opened.handle)
                                  : request->without_alert() ? _oamCloseObject_WOAN(opened.handle)
                                                             : _oamCloseObject(opened.handle);
            if (code)
                throw Failure(code, "the change of " + Quoted(opened.object) +
                                        " was refused, nothing was changed")
                    .About({opened.object, {}, {}});
        };
        if (opened.isWrite)
            response->set_generation(core_.configuration.Change(call.user, "change", "", close));
        else
            close();
    };
    return Take(context, kClose, request->session(), handleText(request->handle()), work);
}

SessionsService::Reactor* SessionsService::GetKeyword(Context* context,
                                                      const v1::GetKeywordRequest* request,
                                                      v1::ValueResponse* response) {
    return TakeHandle(
        context, kGetKeyword, request->session(), request->handle(),
        [=](const OpenedHandle& opened) {
            const std::string keyword = keywordOf(request->keyword());
            const Answer value = AskText([&](char* buffer, unsigned size) {
                return unsigned{(opened.isDatabase ? _oamDbGetKeyword : _oamGetKeyword)(
                    opened.handle, keyword.c_str(), buffer, size)};
            });
            require(value.code, "read", opened, keyword);
            response->set_value(value.text);
        });
}

SessionsService::Reactor* SessionsService::SetKeyword(Context* context,
                                                      const v1::SetKeywordRequest* request,
                                                      v1::EmptyResponse*) {
    return TakeHandle(context, kSetKeyword, request->session(), request->handle(),
                      [=](const OpenedHandle& opened) {
                          const std::string keyword = keywordOf(request->keyword());
                          const std::string value = valueOf(request->value());
                          require((opened.isDatabase ? _oamDbSetKeyword : _oamSetKeyword)(
                                      opened.handle, keyword.c_str(), value.c_str()),
                                  "set", opened, keyword, value);
                      });
}

SessionsService::Reactor* SessionsService::RemoveKeyword(Context* context,
                                                         const v1::RemoveKeywordRequest* request,
                                                         v1::EmptyResponse*) {
    return TakeHandle(context, kRemoveKeyword, request->session(), request->handle(),
                      [=](const OpenedHandle& opened) {
                          const std::string keyword = keywordOf(request->keyword());
                          require(_oamDbRemoveKeyword(opened.handle, keyword.c_str()), "remove",
                                  opened, keyword);
                      });
}

SessionsService::Reactor* SessionsService::GetQualifier(Context* context,
                                                        const v1::GetQualifierRequest* request,
                                                        v1::ValueResponse* response) {
    return TakeHandle(
        context, kGetQualifier, request->session(), request->handle(),
        [=](const OpenedHandle& opened) {
            const std::string keyword = keywordOf(request->keyword());
            const std::string qualifier = qualifierOf(request->qualifier());
            const Answer value = AskText([&](char* buffer, unsigned size) {
                return unsigned{(opened.isDatabase ? _oamDbGetQualifier : _oamGetQualifier)(
                    opened.handle, keyword.c_str(), qualifier.c_str(), buffer, size)};
            });
            require(value.code, "read the qualifier of", opened, keyword);
            response->set_value(value.text);
        });
}

SessionsService::Reactor* SessionsService::SetQualifier(Context* context,
                                                        const v1::SetQualifierRequest* request,
                                                        v1::EmptyResponse*) {
    return TakeHandle(
        context, kSetQualifier, request->session(), request->handle(),
        [=](const OpenedHandle& opened) {
            const std::string keyword = keywordOf(request->keyword());
            const std::string value = valueOf(request->value());
            require(_oamDbSetQualifier(opened.handle, keyword.c_str(),
                                       qualifierOf(request->qualifier()).c_str(), value.c_str()),
                    "set the qualifier of", opened, keyword, value);
        });
}

SessionsService::Reactor* SessionsService::RemoveQualifier(
    Context* context, const v1::RemoveQualifierRequest* request, v1::EmptyResponse*) {
    return TakeHandle(context, kRemoveQualifier, request->session(), request->handle(),
                      [=](const OpenedHandle& opened) {
                          const std::string keyword = keywordOf(request->keyword());
                          require(_oamDbRemoveQualifier(opened.handle, keyword.c_str(),
                                                        qualifierOf(request->qualifier()).c_str()),
                                  "remove the qualifier of", opened, keyword);
                      });
}

SessionsService::Reactor* SessionsService::ListEntries(Context* context,
                                                       const v1::ListEntriesRequest* request,
                                                       v1::ListEntriesResponse* response) {
    return TakeHandle(context, kListEntries, request->session(), request->handle(),
                      [=](const OpenedHandle& opened) {
                          const auto entries =
                              AskNames([&](int index, char* buffer, unsigned size) {
                                  return _oamDbEnumKeywords(opened.handle, index, buffer, size);
                              });
                          for (const std::string& entry : entries) response->add_entries(entry);
                      });
}

SessionsService::Reactor* SessionsService::GetProviderMode(
    Context* context, const v1::GetProviderModeRequest* request,
    v1::ProviderModeResponse* response) {
    return TakeHandle(context, kGetProviderMode, request->session(), request->handle(),
                      [=](const OpenedHandle& opened) {
                          bool isProvider = false;
                          require(_oamDbGetProviderMode(opened.handle, &isProvider),
                                  "read the provider mode of", opened, opened.object);
                          response->set_provider(isProvider);
                      });
}

SessionsService::Reactor* SessionsService::SetProviderMode(
    Context* context, const v1::SetProviderModeRequest* request, v1::EmptyResponse*) {
    return TakeHandle(context, kSetProviderMode, request->session(), request->handle(),
                      [=](const OpenedHandle& opened) {
                          require(_oamDbSetProviderMode(opened.handle, request->provider()),
                                  "set the provider mode of", opened, opened.object);
                      });
}

SessionsService::Reactor* SessionsService::RegisterAlerts(Context* context,
                                                          const v1::SessionRequest* request,
                                                          v1::EmptyResponse*) {
    return Take(context, kRegister, request->session(), "", [](Session& session, const Call&) {
        if (const unsigned code = _oamAlertRegister(session.Client()))
            throw Failure(code, "the session cannot be registered for alerts");
    });
}

SessionsService::Reactor* SessionsService::UnregisterAlerts(Context* context,
                                                            const v1::SessionRequest* request,
                                                            v1::EmptyResponse*) {
    return Take(context, kUnregister, request->session(), "", [](Session& session, const Call&) {
        if (const unsigned code = _oamAlertUnregister(session.Client()))
            throw Failure(code, "the session is not registered for alerts");
    });
}

}  // namespace oam::server
