#include "services/configuration_service.h"

#include <algorithm>
#include <atomic>
#include <optional>

#include "configuration/configuration_keeper.h"
#include "configuration/import_preview.h"
#include "configuration/scratch_file.h"
#include "configuration_file.h"
#include "failure.h"
#include "history/configuration_export.h"
#include "oam/entry.h"
#include "object_change.h"
#include "services/time_message.h"
#include "transport/refusal_status.h"

namespace oam::server {
namespace {

constexpr Verb kExport = {"Export", Role::kViewer};
constexpr Verb kImport = {"Import", Role::kAdmin};

constexpr Verb kHistory = {"ListHistory", Role::kViewer};
constexpr Verb kDiff = {"DiffConfiguration", Role::kViewer};
constexpr Verb kRollBackObject = {"RollBack of an object", Role::kConfigurator};
constexpr Verb kRollBackAll = {"RollBack", Role::kAdmin};

constexpr std::size_t kUsualPage = 100;
constexpr std::size_t kLargestPage = 1000;
constexpr std::size_t kPiece = 64 * 1024;
// 10,000 objects of 60 keywords have half of it.
constexpr std::size_t kLargestFile = 64 * 1024 * 1024;

// The whole file is written first, so a slow reader holds nothing but a file of a moment.
class Exporter : public grpc::ServerWriteReactor<v1::ExportResponse> {
  public:
    Exporter(Core& core, const Call& call) {
        core.calls.Start(
            call, kExport, "",
            [this, &core](const Call&) {
                file_.emplace(core.directory);
                if (const unsigned code = _oamConfigExport(file_->Path().c_str()))
                    throw Failure(code, "the configuration cannot be exported");
                return grpc::Status::OK;
            },
            [this](const grpc::Status& status) {
                if (status.ok())
                    Next();
                else
                    Finish(status);
            });
    }
    explicit Exporter(const grpc::Status& refusal) { Finish(refusal); }

    void OnWriteDone(bool ok) override {
        if (ok)
            Next();
        else
            Finish(grpc::Status::CANCELLED);
    }
    void OnDone() override { delete this; }

  private:
    void Next() try {
        response_.set_piece(file_->Read(kPiece));
        if (response_.piece().empty())
            Finish(grpc::Status::OK);
        else
            StartWrite(&response_);
    } catch (const std::exception& error) {
        Finish(Refused(grpc::StatusCode::INTERNAL, error.what()));
    }

    std::optional<ScratchFile> file_;
    v1::ExportResponse response_;
};

void tell(const std::vector<KeywordChange>& changes,
          google::protobuf::RepeatedPtrField<v1::KeywordChange>* told) {
    for (const KeywordChange& change : changes) {
        auto* const one = told->Add();
        one->set_keyword(change.keyword);
        if (change.oldValue) one->set_old_value(*change.oldValue);
        if (change.newValue) one->set_new_value(*change.newValue);
    }
}

v1::ObjectDifference::Kind kindOf(ObjectDifference::Kind kind) {
    switch (kind) {
        case ObjectDifference::Kind::kChanged:
            return v1::ObjectDifference::KIND_CHANGED;
        case ObjectDifference::Kind::kCreated:
            return v1::ObjectDifference::KIND_CREATED;
        case ObjectDifference::Kind::kDeleted:
            break;
    }
    return v1::ObjectDifference::KIND_DELETED;
}

void tell(const std::vector<ObjectDifference>& differences,
          google::protobuf::RepeatedPtrField<v1::ObjectDifference>* told) {
    for (const ObjectDifference& difference : differences) {
        auto* const one = told->Add();
        one->set_object(difference.object);
        one->set_kind(kindOf(difference.kind));
        tell(difference.changes, one->mutable_changes());
    }
}

class Importer : public grpc::ServerReadReactor<v1::ImportRequest> {
  public:
    Importer(Core& core, const Call& call, v1::ImportResponse* response)
        : core_(&core), call_(call), response_(response) {
        try {
            file_.emplace(core.directory);
        } catch (const std::exception& error) {
            Finish(Refused(grpc::StatusCode::INTERNAL, error.what()));
            return;
        }
        StartRead(&request_);
    }
    explicit Importer(const grpc::Status& refusal) { Finish(refusal); }

    void OnReadDone(bool ok) override {
        if (!ok) return isCancelled_ ? Finish(grpc::Status::CANCELLED) : Import();
        if (file_->Size() + request_.piece().size() > kLargestFile)
            return Finish(Refused(grpc::StatusCode::INVALID_ARGUMENT, "the file is too long"));
        isPreview_ = isPreview_ || request_.preview();
        try {
            file_->Append(request_.piece());
        } catch (const std::exception& error) {
            return Finish(Refused(grpc::StatusCode::RESOURCE_EXHAUSTED, error.what()));
        }
        StartRead(&request_);
    }
    // A client that went away has not sent all of it.
    void OnCancel() override { isCancelled_ = true; }
    void OnDone() override { delete this; }

  private:
    void Import() {
        core_->calls.StartAlone(
            call_, kImport,
            [this](const Call& call) {
                const TransferFile judged = JudgeImport(file_->Path());
                response_->set_objects(static_cast<unsigned>(judged.objects));
                for (const Finding& finding : judged.findings) {
                    auto* const told = response_->add_findings();
                    told->set_line(finding.at.line);
                    told->set_column(finding.at.column);
                    told->set_text(finding.text);
                }
                if (judged.findings.empty() && isPreview_) {
                    tell(WhatImportChanges(core_->directory, file_->Path()),
                         response_->mutable_differences());
                    return grpc::Status::OK;
                }
                if (judged.findings.empty())
                    response_->set_generation(core_->configuration.Change(
                        call.user, "import", "", [this] { ImportConfiguration(file_->Path()); }));
                core_->names.Forget();
                return grpc::Status::OK;
            },
            [this](const grpc::Status& status) { Finish(status); });
    }

    Core* core_ = nullptr;
    Call call_;
    v1::ImportResponse* response_ = nullptr;
    std::optional<ScratchFile> file_;
    v1::ImportRequest request_;
    bool isPreview_ = false;
    std::atomic<bool> isCancelled_{false};
};

// As an import of an export that was written then.
std::uint64_t rollBackAll(Core& core, const Call& call, Generation generation) {
    ScratchFile file(core.directory);
    file.Append(ExportText(core.configuration.Book().State(generation)));
    const TransferFile judged = JudgeImport(file.Path());
    if (!judged.findings.empty())
        throw Failure("generation " + std::to_string(generation) +
                      " cannot be imported: " + judged.findings.front().text);
    return core.configuration.Change(call.user, "rollback", "",
                                     [&] { ImportConfiguration(file.Path()); });
}

std::uint64_t rollBackOne(Core& core, const Call& call, Generation generation,
                          const std::string& object) {
    const KeywordRollback rollback = core.configuration.Book().RollBack(object, generation);
    if (rollback.assignments.empty()) return 0;
    return core.configuration.Change(call.user, "rollback", object,
                                     [&] { ApplyChange(object, rollback.assignments); });
}

}  // namespace

grpc::ServerUnaryReactor* ConfigurationService::ListHistory(grpc::CallbackServerContext* context,
                                                            const v1::ListHistoryRequest* request,
                                                            v1::ListHistoryResponse* response) {
    return core_.calls.Take(context, kHistory, About(request->object()), [=, this](const Call&) {
        HistoryQuery query;
        query.object = TextOf(request->object(), "the object's name");
        query.beforeGeneration = request->before();
        query.beforeNumber = request->before_number();
        query.limit = request->limit() == 0 ? kUsualPage
                                            : std::min<std::size_t>(request->limit(), kLargestPage);
        for (const HistoryEntry& entry : core_.configuration.Book().List(query)) {
            auto* const told = response->add_entries();
            told->set_generation(entry.generation);
            told->set_number(entry.number);
            Tell(entry.time, told->mutable_time());
            told->set_user(entry.occasion.user);
            told->set_action(entry.occasion.action);
            told->set_operation(entry.occasion.operation);
            told->set_object(entry.object);
            tell(entry.changes, told->mutable_changes());
        }
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* ConfigurationService::DiffConfiguration(
    grpc::CallbackServerContext* context, const v1::DiffConfigurationRequest* request,
    v1::DiffConfigurationResponse* response) {
    return core_.calls.Take(context, kDiff, About(request->object()), [=, this](const Call&) {
        tell(core_.configuration.Book().Compare(request->from(), request->to(),
                                                TextOf(request->object(), "the object's name")),
             response->mutable_differences());
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* ConfigurationService::RollBack(grpc::CallbackServerContext* context,
                                                         const v1::RollBackRequest* request,
                                                         v1::RollBackResponse* response) {
    if (!request->object().empty())
        return core_.calls.Take(
            context, kRollBackObject, request->object(), [=, this](const Call& call) {
                const std::string object = TextOf(request->object(), "the object's name");
                auto& book = core_.configuration.Book();
                const Generation before = book.Generations().newest;
                response->set_generation(rollBackOne(core_, call, request->generation(), object));
                if (response->generation() != 0)
                    tell(book.Compare(before, 0, object), response->mutable_differences());
                return grpc::Status::OK;
            });
    auto* const reactor = context->DefaultReactor();
    Call call;
    const grpc::Status admitted = core_.calls.Admit(*context, kRollBackAll, "", &call);
    if (!admitted.ok()) {
        reactor->Finish(admitted);
        return reactor;
    }
    core_.calls.StartAlone(
        call, kRollBackAll,
        [=, this](const Call& caller) {
            auto& book = core_.configuration.Book();
            const Generation before = book.Generations().newest;
            response->set_generation(rollBackAll(core_, caller, request->generation()));
            if (response->generation() != 0)
                tell(book.Compare(before, 0), response->mutable_differences());
            core_.names.Forget();
            return grpc::Status::OK;
        },
        [reactor](const grpc::Status& status) { reactor->Finish(status); });
    return reactor;
}

grpc::ServerWriteReactor<v1::ExportResponse>* ConfigurationService::Export(
    grpc::CallbackServerContext* context, const v1::ExportRequest*) {
    Call call;
    const grpc::Status admitted = core_.calls.Admit(*context, kExport, "", &call);
    return admitted.ok() ? new Exporter(core_, call) : new Exporter(admitted);
}

grpc::ServerReadReactor<v1::ImportRequest>* ConfigurationService::Import(
    grpc::CallbackServerContext* context, v1::ImportResponse* response) {
    Call call;
    const grpc::Status admitted = core_.calls.Admit(*context, kImport, "", &call);
    return admitted.ok() ? new Importer(core_, call, response) : new Importer(admitted);
}

}  // namespace oam::server
