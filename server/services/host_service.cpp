#include "services/host_service.h"

#include <google/protobuf/util/time_util.h>
#include <unistd.h>

#include "failure.h"
#include "foreign_text.h"
#include "journal/journal.h"
#include "library/foreign_calls.h"
#include "modules.h"
#include "oam/entry.h"
#include "services/control.h"
#include "services/doctor.h"
#include "services/time_message.h"
#include "version.h"

namespace oam::server {
namespace {

constexpr Verb kGet = {"GetHost", Role::kViewer};
constexpr Verb kCodeName = {"GetCodeName", Role::kViewer};
constexpr Verb kModules = {"ListModules", Role::kViewer};
constexpr Verb kDiagnose = {"Diagnose", Role::kViewer};
constexpr Verb kStart = {"StartService", Role::kAdmin};
constexpr Verb kStop = {"StopService", Role::kAdmin};
constexpr Verb kRestart = {"RestartService", Role::kAdmin};

v1::Finding::Severity severityOf(Complaint::Severity severity) {
    switch (severity) {
        case Complaint::Severity::kNote:
            return v1::Finding::SEVERITY_NOTE;
        case Complaint::Severity::kWarning:
            return v1::Finding::SEVERITY_WARNING;
        case Complaint::Severity::kError:
            break;
    }
    return v1::Finding::SEVERITY_ERROR;
}

void tell(const ForeignEntryUse& use, v1::EntryUse* told) {
    using google::protobuf::util::TimeUtil;
    told->set_entry(use.entry);
    told->set_calls(use.calls);
    *told->mutable_total() = TimeUtil::NanosecondsToDuration(use.sum.count());
    told->set_under_way(static_cast<std::uint32_t>(use.underWay));
    if (use.underWay != 0)
        *told->mutable_oldest() = TimeUtil::NanosecondsToDuration(use.oldest.count());
}

}  // namespace

// Answers also while every thread of the lanes hangs: it asks the service for nothing.
grpc::ServerUnaryReactor* HostService::GetHost(grpc::CallbackServerContext* context,
                                               const v1::GetHostRequest*, v1::HostInfo* response) {
    auto* const reactor = context->DefaultReactor();
    Call call;
    const grpc::Status admitted = core_.calls.Admit(*context, kGet, "", &call);
    if (admitted.ok()) Tell(call, response);
    reactor->Finish(admitted);
    return reactor;
}

grpc::ServerUnaryReactor* HostService::GetCodeName(grpc::CallbackServerContext* context,
                                                   const v1::GetCodeNameRequest* request,
                                                   v1::GetCodeNameResponse* response) {
    return core_.calls.Take(context, kCodeName, About(HexText(request->code())), [=](const Call&) {
        if (const char* name = _oamGetText(request->code())) response->set_name(Shown(name));
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* HostService::ListModules(grpc::CallbackServerContext* context,
                                                   const v1::ListModulesRequest*,
                                                   v1::ListModulesResponse* response) {
    return core_.calls.Take(context, kModules, "", [=](const Call&) {
        const std::vector<ForeignEntryUse> uses = ForeignEntryUses();
        for (const ModuleFacts& module : LoadedModules()) {
            auto* const told = response->add_modules();
            told->set_name(module.name);
            told->set_is_component(module.kind == ObjectKind::kComponent);
            for (const std::string& product : module.products) told->add_products(product);
            for (const ForeignEntryUse& use : uses)
                if (use.module == module.name) tell(use, told->add_entries());
        }
        return grpc::Status::OK;
    });
}

// Reads files, and must answer while every thread of the lanes hangs.
grpc::ServerUnaryReactor* HostService::Diagnose(grpc::CallbackServerContext* context,
                                                const v1::DiagnoseRequest*,
                                                v1::DiagnoseResponse* response) {
    return core_.calls.TakeAside(context, kDiagnose, [=, this](const Call&) {
        for (const Complaint& complaint : Examine(core_)) {
            auto* const told = response->add_findings();
            told->set_severity(severityOf(complaint.severity));
            told->set_subject(complaint.subject);
            told->set_text(complaint.text);
            told->set_remedy(complaint.remedy);
        }
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* HostService::StartService(grpc::CallbackServerContext* context,
                                                    const v1::StartServiceRequest*,
                                                    v1::HostInfo* response) {
    return Alone(
        context, kStart, [this] { core_.control.Start(); }, response);
}

grpc::ServerUnaryReactor* HostService::StopService(grpc::CallbackServerContext* context,
                                                   const v1::StopServiceRequest*,
                                                   v1::HostInfo* response) {
    return Alone(
        context, kStop, [this] { core_.control.Stop(); }, response);
}

grpc::ServerUnaryReactor* HostService::RestartService(grpc::CallbackServerContext* context,
                                                      const v1::RestartServiceRequest*,
                                                      v1::HostInfo* response) {
    return Alone(
        context, kRestart,
        [this] {
            core_.control.Stop();
            core_.control.Start();
        },
        response);
}

grpc::ServerUnaryReactor* HostService::Alone(grpc::CallbackServerContext* context, const Verb& verb,
                                             std::function<void()> work, v1::HostInfo* response) {
    auto* const reactor = context->DefaultReactor();
    Call call;
    const grpc::Status admitted = core_.calls.Admit(*context, verb, "", &call);
    if (!admitted.ok()) {
        reactor->Finish(admitted);
        return reactor;
    }
    core_.calls.StartAlone(
        call, verb,
        [=, this](const Call&) {
            core_.journal.Deed(call.user, verb.name, "");
            work();
            Tell(call, response);
            return grpc::Status::OK;
        },
        [reactor](const grpc::Status& status) { reactor->Finish(status); });
    return reactor;
}

void HostService::Tell(const Call& call, v1::HostInfo* told) const {
    told->set_version(kVersion);
    told->set_directory(core_.directory);
    told->set_process(static_cast<std::uint64_t>(getpid()));
    server::Tell(core_.host.Started(), told->mutable_started());
    told->set_running(core_.host.IsRunning());
    told->set_code(core_.host.Code());
    if (core_.host.Code()) told->set_code_name(core_.names.Of(core_.host.Code()));
    told->set_newest_alert(core_.ring.Newest());
    told->set_user(call.user);
    told->set_role(RoleName(call.role));
}

}  // namespace oam::server
