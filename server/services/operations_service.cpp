#include "services/operations_service.h"

#include <algorithm>
#include <deque>

#include "failure.h"
#include "foreign_text.h"
#include "journal/journal.h"
#include "oam/entry.h"
#include "services/time_message.h"
#include "transport/refusal_status.h"

namespace oam::server {
namespace {

constexpr Verb kStart = {"StartBoard", Role::kOperator};
constexpr Verb kStop = {"StopBoard", Role::kOperator};
constexpr Verb kTest = {"TestBoard", Role::kOperator};
constexpr Verb kGet = {"GetOperation", Role::kViewer};
constexpr Verb kList = {"ListOperations", Role::kViewer};
constexpr Verb kWait = {"WaitOperation", Role::kViewer};
constexpr Verb kFollow = {"FollowOperations", Role::kViewer};
constexpr Verb kCancel = {"CancelWait", Role::kViewer};

constexpr int kMostFollowed = 10000;

v1::Operation::State stateOf(OperationState state) {
    switch (state) {
        case OperationState::kRunning:
            return v1::Operation::STATE_RUNNING;
        case OperationState::kDone:
            return v1::Operation::STATE_DONE;
        case OperationState::kFailed:
            return v1::Operation::STATE_FAILED;
        case OperationState::kRefused:
            return v1::Operation::STATE_REFUSED;
        case OperationState::kUnknown:
            break;
    }
    return v1::Operation::STATE_UNKNOWN;
}

v1::Operation::Kind kindOf(OperationKind kind) {
    switch (kind) {
        case OperationKind::kStart:
            return v1::Operation::KIND_START;
        case OperationKind::kStop:
            return v1::Operation::KIND_STOP;
        case OperationKind::kTest:
            break;
    }
    return v1::Operation::KIND_TEST;
}

void tell(const OperationRecord& record, v1::Operation* told) {
    told->set_id(record.id);
    told->set_kind(kindOf(record.kind));
    told->set_board(record.board);
    told->set_state(stateOf(record.state));
    Tell(record.requested, told->mutable_requested());
    if (record.ended) Tell(*record.ended, told->mutable_ended());
    told->set_user(record.user);
    told->set_text(record.text);
    told->set_sequence(record.sequence);
    if (record.state != OperationState::kRefused) return;
    told->mutable_refusal()->set_party(v1::Refusal::PARTY_SERVICE);
    told->mutable_refusal()->set_code(record.code);
    told->mutable_refusal()->set_rule(record.text);
}

// For a denial.
std::string idsOf(const v1::FollowOperationsRequest& request) {
    if (request.ids_size() == 0) return {};
    const int others = request.ids_size() - 1;
    return request.ids(0) + (others == 0 ? "" : " and " + std::to_string(others) + " more");
}

grpc::Status unknownOperation(const std::string& id) {
    return Refused(grpc::StatusCode::NOT_FOUND, "there is no operation " + Quoted(id));
}

class Refusing : public grpc::ServerWriteReactor<v1::Operation> {
  public:
    explicit Refusing(const grpc::Status& status) { Finish(status); }
    void OnDone() override { delete this; }
};

// Tells each operation as it ends. The waits call in from any thread; one write is under way at a
// time.
class Follower : public grpc::ServerWriteReactor<v1::Operation> {
  public:
    Follower(OperationWaits& waits, const std::string& user,
             const v1::FollowOperationsRequest& request)
        : state_(std::make_shared<State>()), book_(waits) {
        state_->reactor = this;
        state_->expected = static_cast<std::size_t>(request.ids_size());
        for (const std::string& id : request.ids()) {
            const auto wait = waits.Add(
                id, user, std::nullopt,
                [state = state_](const OperationRecord& record) { State::Ended(state, record); });
            if (!wait) {
                State::End(state_, unknownOperation(id));
                return;
            }
            waits_.push_back(*wait);
        }
        if (request.ids_size() == 0) State::End(state_, grpc::Status::OK);
    }

    void OnWriteDone(bool ok) override { State::Wrote(state_, ok); }
    void OnCancel() override { State::End(state_, grpc::Status::CANCELLED); }
    void OnDone() override {
        {
            const std::lock_guard hold(state_->mutex);
            state_->reactor = nullptr;
        }
        for (const std::uint64_t wait : waits_) book_.End(wait);
        delete this;
    }

  private:
    // Outlives the reactor while waits know it.
    struct State {
        std::mutex mutex;
        Follower* reactor = nullptr;
        std::deque<v1::Operation> queue;  // the first is under way while `isWriting`
        std::size_t expected = 0;
        std::size_t written = 0;
        bool isWriting = false;
        bool isFinished = false;

        static void Ended(const std::shared_ptr<State>& state, const OperationRecord& record) {
            const std::lock_guard hold(state->mutex);
            if (state->reactor == nullptr || state->isFinished) return;
            tell(record, &state->queue.emplace_back());
            state->Go();
        }
        static void Wrote(const std::shared_ptr<State>& state, bool ok) {
            const std::lock_guard hold(state->mutex);
            state->isWriting = false;
            state->queue.pop_front();
            ++state->written;
            if (!ok) state->isFinished = true;
            if (state->isFinished || state->written == state->expected) {
                state->isFinished = true;
                state->reactor->Finish(state->status);
            } else {
                state->Go();
            }
        }
        static void End(const std::shared_ptr<State>& state, const grpc::Status& with) {
            const std::lock_guard hold(state->mutex);
            if (state->isFinished || state->reactor == nullptr) return;
            state->isFinished = true;
            state->status = with;
            if (!state->isWriting) state->reactor->Finish(with);
        }
        void Go() {
            if (isWriting || queue.empty()) return;
            isWriting = true;
            reactor->StartWrite(&queue.front());
        }

        grpc::Status status;
    };

    std::shared_ptr<State> state_;
    OperationWaits& book_;
    std::vector<std::uint64_t> waits_;
};

}  // namespace

grpc::ServerUnaryReactor* OperationsService::Request(
    grpc::CallbackServerContext* context, const Verb& verb, OperationKind kind,
    const std::string& board, std::function<unsigned(const std::string&)> request,
    v1::Operation* response) {
    return core_.calls.Take(context, verb, board, [=, this](const Call& call) {
        const std::string name = TextOf(board, "the board's name");
        // To the service an empty name means every board.
        if (name.empty()) return Refused(grpc::StatusCode::INVALID_ARGUMENT, "no board is named");
        const OperationRecord begun = core_.operations.Begin(kind, name, call.user);
        const unsigned code = request(name);
        if (code) core_.operations.Refuse(begun.id, code, CodeText(code));
        const OperationRecord now = core_.operations.Find(begun.id).value_or(begun);
        core_.journal.Operation(code ? now : begun);
        tell(now, response);
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* OperationsService::StartBoard(grpc::CallbackServerContext* context,
                                                        const v1::StartBoardRequest* request,
                                                        v1::Operation* response) {
    const unsigned flags = request->automatic() ? unsigned{OAM_AUTOMATIC} : 0U;
    return Request(
        context, kStart, OperationKind::kStart, request->board(),
        [flags](const std::string& board) {
            return unsigned{_oamStartBoard(board.c_str(), flags)};
        },
        response);
}

grpc::ServerUnaryReactor* OperationsService::StopBoard(grpc::CallbackServerContext* context,
                                                       const v1::StopBoardRequest* request,
                                                       v1::Operation* response) {
    const unsigned flags = request->automatic() ? unsigned{OAM_AUTOMATIC} : 0U;
    return Request(
        context, kStop, OperationKind::kStop, request->board(),
        [flags](const std::string& board) { return unsigned{_oamStopBoard(board.c_str(), flags)}; },
        response);
}

grpc::ServerUnaryReactor* OperationsService::TestBoard(grpc::CallbackServerContext* context,
                                                       const v1::TestBoardRequest* request,
                                                       v1::Operation* response) {
    const unsigned value = request->value();
    return Request(
        context, kTest, OperationKind::kTest, request->board(),
        [value](const std::string& board) { return unsigned{_oamTestBoard(board.c_str(), value)}; },
        response);
}

grpc::ServerUnaryReactor* OperationsService::GetOperation(grpc::CallbackServerContext* context,
                                                          const v1::GetOperationRequest* request,
                                                          v1::Operation* response) {
    return core_.calls.Take(context, kGet, About(request->id()), [=, this](const Call&) {
        const auto record = core_.operations.Find(request->id());
        if (!record) return unknownOperation(request->id());
        tell(*record, response);
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* OperationsService::ListOperations(
    grpc::CallbackServerContext* context, const v1::ListOperationsRequest* request,
    v1::ListOperationsResponse* response) {
    return core_.calls.Take(context, kList, About(request->board()), [=, this](const Call&) {
        const std::string board = TextOf(request->board(), "the board's name");
        for (const OperationRecord& record : core_.operations.List(request->running_only(), board))
            tell(record, response->add_operations());
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* OperationsService::WaitOperation(grpc::CallbackServerContext* context,
                                                           const v1::WaitOperationRequest* request,
                                                           v1::Operation* response) {
    auto* const reactor = context->DefaultReactor();
    Call call;
    const grpc::Status admitted = core_.calls.Admit(*context, kWait, request->id(), &call);
    if (!admitted.ok()) {
        reactor->Finish(admitted);
        return reactor;
    }
    // A caller that goes away is noticed at its deadline: the wait is never longer than that.
    const auto now = std::chrono::system_clock::now();
    auto limit = std::chrono::nanoseconds(std::max<std::int64_t>(
        0,
        std::chrono::duration_cast<std::chrono::nanoseconds>(context->deadline() - now).count()));
    if (request->has_time_limit()) {
        const auto asked = std::chrono::seconds(std::clamp<std::int64_t>(
                               request->time_limit().seconds(), 0, 86400)) +
                           std::chrono::nanoseconds(request->time_limit().nanos());
        limit = std::min(limit, std::chrono::duration_cast<std::chrono::nanoseconds>(asked));
    }
    constexpr auto kLongest = std::chrono::hours(24);
    limit = std::min<std::chrono::nanoseconds>(limit, kLongest);
    const auto wait = waits_.Add(request->id(), call.user, OperationWaits::Clock::now() + limit,
                                 [reactor, response](const OperationRecord& record) {
                                     tell(record, response);
                                     reactor->Finish(grpc::Status::OK);
                                 });
    if (!wait) reactor->Finish(unknownOperation(request->id()));
    return reactor;
}

grpc::ServerWriteReactor<v1::Operation>* OperationsService::FollowOperations(
    grpc::CallbackServerContext* context, const v1::FollowOperationsRequest* request) {
    Call call;
    const grpc::Status admitted = core_.calls.Admit(*context, kFollow, idsOf(*request), &call);
    if (!admitted.ok()) return new Refusing(admitted);
    if (request->ids_size() > kMostFollowed)
        return new Refusing(
            Refused(grpc::StatusCode::INVALID_ARGUMENT, "too many operations at once"));
    return new Follower(waits_, call.user, *request);
}

grpc::ServerUnaryReactor* OperationsService::CancelWait(grpc::CallbackServerContext* context,
                                                        const v1::CancelWaitRequest* request,
                                                        v1::CancelWaitResponse* response) {
    return core_.calls.Take(context, kCancel, About(request->id()), [=, this](const Call& call) {
        response->set_cancelled(waits_.EndOf(request->id(), call.user));
        return grpc::Status::OK;
    });
}

}  // namespace oam::server
