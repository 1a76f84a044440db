#include "services/objects_service.h"

#include "board_making.h"
#include "configuration/configuration_keeper.h"
#include "foreign_text.h"
#include "object_change.h"
#include "object_reading.h"
#include "transport/refusal_status.h"

namespace oam::server {
namespace {

constexpr Verb kList = {"ListObjects", Role::kViewer};
constexpr Verb kRead = {"ReadObject", Role::kViewer};
constexpr Verb kDescribe = {"DescribeObject", Role::kViewer};
constexpr Verb kChange = {"ChangeObject", Role::kConfigurator};
constexpr Verb kCreate = {"CreateBoard", Role::kConfigurator};
constexpr Verb kDelete = {"DeleteBoard", Role::kConfigurator};

template <class Names>
std::vector<std::string> textsOf(const Names& names, const char* what) {
    std::vector<std::string> texts;
    for (const std::string& name : names) texts.push_back(TextOf(name, what));
    return texts;
}

void tell(const KeywordFacts& facts, v1::Keyword* keyword) {
    keyword->set_name(facts.name);
    if (facts.value.IsGiven()) return keyword->set_value(facts.value.text);
    keyword->set_code(facts.value.code);
    if (const char* name = _oamGetText(facts.value.code)) keyword->set_code_name(Shown(name));
}

}  // namespace

grpc::ServerUnaryReactor* ObjectsService::ListObjects(grpc::CallbackServerContext* context,
                                                      const v1::ListObjectsRequest*,
                                                      v1::ListObjectsResponse* response) {
    return core_.calls.Take(context, kList, "", [response](const Call&) {
        for (const std::string& name : ObjectNames()) response->add_names(name);
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* ObjectsService::ReadObject(grpc::CallbackServerContext* context,
                                                     const v1::ReadObjectRequest* request,
                                                     v1::ReadObjectResponse* response) {
    return core_.calls.Take(context, kRead, request->name(), [=](const Call&) {
        const std::string name = TextOf(request->name(), "the object's name");
        const auto keywords = textsOf(request->keywords(), "a keyword");
        const auto facts =
            request->qualifier().empty()
                ? oam::ReadObject(name, keywords)
                : ReadQualifier(name, keywords, TextOf(request->qualifier(), "the qualifier"));
        for (const KeywordFacts& keyword : facts) tell(keyword, response->add_keywords());
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* ObjectsService::DescribeObject(grpc::CallbackServerContext* context,
                                                         const v1::DescribeObjectRequest* request,
                                                         v1::DescribeObjectResponse* response) {
    return core_.calls.Take(context, kDescribe, request->name(), [=](const Call&) {
        const auto facts = oam::DescribeObject(TextOf(request->name(), "the object's name"),
                                               textsOf(request->keywords(), "a keyword"));
        for (const KeywordFacts& keyword : facts) {
            auto* const description = response->add_descriptions();
            tell(keyword, description->mutable_keyword());
            for (const auto& [name, text] : keyword.qualifiers) {
                auto* const qualifier = description->add_qualifiers();
                qualifier->set_name(name);
                qualifier->set_value(text);
            }
        }
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* ObjectsService::ChangeObject(grpc::CallbackServerContext* context,
                                                       const v1::ChangeObjectRequest* request,
                                                       v1::ChangeObjectResponse* response) {
    return core_.calls.Take(context, kChange, request->name(), [=, this](const Call& call) {
        std::vector<Assignment> changes;
        for (const auto& change : request->changes())
            changes.push_back(
                {TextOf(change.keyword(), "a keyword"), TextOf(change.value(), "a value")});
        if (changes.empty())
            return Refused(grpc::StatusCode::INVALID_ARGUMENT, "nothing is to be changed");
        response->set_generation(
            core_.configuration.Change(call.user, "change", request->name(), [&] {
                ApplyChange(TextOf(request->name(), "the object's name"), changes,
                            request->without_alert());
            }));
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* ObjectsService::CreateBoard(grpc::CallbackServerContext* context,
                                                      const v1::CreateBoardRequest* request,
                                                      v1::CreateBoardResponse* response) {
    const Target target = About(request->product());
    return core_.calls.Take(context, kCreate, target, [=, this](const Call& call) {
        response->set_generation(core_.configuration.Change(call.user, "create", "", [&] {
            response->set_name(oam::CreateBoard(TextOf(request->product(), "the product")));
        }));
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* ObjectsService::DeleteBoard(grpc::CallbackServerContext* context,
                                                      const v1::DeleteBoardRequest* request,
                                                      v1::DeleteBoardResponse* response) {
    return core_.calls.Take(context, kDelete, request->name(), [=, this](const Call& call) {
        std::optional<std::string> name;
        if (!request->all_boards()) {
            name = TextOf(request->name(), "the board's name");
            if (name->empty() || KindOf(*name) != ObjectKind::kBoard)
                return Refused(grpc::StatusCode::INVALID_ARGUMENT, Quoted(*name) + " is no board");
        }
        BoardSetChange change{{}, 0};
        response->set_generation(core_.configuration.Change(call.user, "delete", name.value_or(""),
                                                            [&] { change = DeleteBoards(name); }));
        for (const std::string& board : change.boards) response->add_deleted(board);
        response->set_code(change.code);
        if (const char* text = change.code ? _oamGetText(change.code) : nullptr)
            response->set_code_name(Shown(text));
        return grpc::Status::OK;
    });
}

}  // namespace oam::server
