#include "remote/remote_operations.h"

#include <thread>

#include "remote/event_queue.h"

namespace oam {
namespace {

using Outcome = OperationOutcome;

bool isRunning(const v1::Operation& operation) {
    return operation.state() == v1::Operation::STATE_RUNNING;
}

Outcome outcomeOf(const v1::Operation& operation) {
    Outcome outcome{operation.board(), Outcome::Kind::kFailed, operation.text()};
    if (operation.state() == v1::Operation::STATE_DONE) outcome.kind = Outcome::Kind::kDone;
    if (operation.state() == v1::Operation::STATE_REFUSED) outcome.kind = Outcome::Kind::kRefused;
    return outcome;
}

class RemoteOperations : public Operations {
  public:
    RemoteOperations(Stubs& stubs, OperationKind kind, const Interruption& interruption)
        : stubs_(stubs), kind_(kind), interruption_(interruption) {}
    ~RemoteOperations() override {
        if (!reader_.joinable()) return;
        context_.TryCancel();
        reader_.join();
    }

    std::optional<Outcome> Request(const std::string& board, unsigned value) override {
        v1::Operation operation;
        try {
            operation = Ask(board, value);
        } catch (const Failure& failure) {
            if (failure.Status() == kNotPermitted || failure.Status() == kNoDaemon) throw;
            return Outcome{board, Outcome::Kind::kRefused, failure.what()};
        }
        if (!isRunning(operation)) return outcomeOf(operation);
        expected_.emplace(board, "operation " + operation.id());
        boards_.emplace(operation.id(), board);
        return std::nullopt;
    }

    std::optional<Outcome> Next(const AlertInbox::Deadline& deadline) override {
        if (expected_.empty()) return std::nullopt;
        if (!reader_.joinable()) Follow();
        while (const auto operation = queue_.Next(deadline, interruption_)) {
            const auto board = boards_.find(operation->id());
            if (board == boards_.end()) continue;
            Outcome outcome = outcomeOf(*operation);
            outcome.board = board->second;
            boards_.erase(board);
            // A daemon that ended meanwhile knows as little as we do.
            if (operation->state() == v1::Operation::STATE_UNKNOWN || isRunning(*operation))
                continue;
            expected_.erase(outcome.board);
            return outcome;
        }
        return std::nullopt;
    }

    std::map<std::string, std::string, NameLess> Expected() const override { return expected_; }

  private:
    v1::Operation Ask(const std::string& board, unsigned value) {
        switch (kind_) {
            case OperationKind::kStart: {
                v1::StartBoardRequest request;
                request.set_board(board);
                return oam::Ask(*stubs_.operations, &v1::Operations::Stub::StartBoard, request);
            }
            case OperationKind::kStop: {
                v1::StopBoardRequest request;
                request.set_board(board);
                return oam::Ask(*stubs_.operations, &v1::Operations::Stub::StopBoard, request);
            }
            case OperationKind::kTest:
                break;
        }
        v1::TestBoardRequest request;
        request.set_board(board);
        request.set_value(value);
        return oam::Ask(*stubs_.operations, &v1::Operations::Stub::TestBoard, request);
    }

    void Follow() {
        v1::FollowOperationsRequest request;
        for (const auto& [id, board] : boards_) request.add_ids(id);
        reader_ = std::thread([this, request] {
            const auto stream = stubs_.operations->FollowOperations(&context_, request);
            for (v1::Operation operation; stream->Read(&operation);) queue_.Put(operation);
            (void)stream->Finish();
            queue_.End();
        });
    }

    Stubs& stubs_;
    const OperationKind kind_;
    const Interruption& interruption_;
    std::map<std::string, std::string, NameLess> expected_;
    std::map<std::string, std::string> boards_;  // by operation
    EventQueue<v1::Operation> queue_;
    grpc::ClientContext context_;
    std::thread reader_;
};

}  // namespace

std::unique_ptr<Operations> NewRemoteOperations(Stubs& stubs, OperationKind kind,
                                                const Interruption& interruption) {
    return std::make_unique<RemoteOperations>(stubs, kind, interruption);
}

}  // namespace oam
