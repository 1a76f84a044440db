#include "busy_clients.h"

#include <chrono>
#include <functional>
#include <random>

#include "daemon_test.h"

namespace oam::torture {
namespace {

using test::Call;
using test::Client;

// Values are never used twice, whatever the life.
std::atomic<unsigned long> lastValue{0};

}  // namespace

BusyClients::BusyClients(const test::Installation& home, Seen& seen, unsigned long seed)
    : home_(home), seen_(seen) {
    constexpr int kChangers = 2;
    for (int i = 0; i < kChangers; ++i)
        threads_.emplace_back([this, i] { Change(i * kBoards / kChangers); });
    threads_.emplace_back([this, seed] { Operate(seed); });
    threads_.emplace_back([this, seed] { Operate(seed + 1); });
    threads_.emplace_back([this] { Watch(); });
    threads_.emplace_back([this] { Raise(); });
}

BusyClients::~BusyClients() {
    isOver_ = true;
    for (std::thread& thread : threads_) thread.join();
}

namespace {

// Nothing when the time is over before there is one.
std::unique_ptr<Client> connect(const test::Installation& home, const std::atomic<bool>& isOver) {
    while (!isOver) {
        try {
            return std::make_unique<Client>(home);
        } catch (const std::exception&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    return nullptr;
}

}  // namespace

void BusyClients::Change(int first) {
    const auto client = connect(home_, isOver_);
    for (int i = 0; client && !isOver_; i = (i + 1) % (kBoards / 2)) {
        const std::string board = BoardName(first + i), value = "v" + std::to_string(++lastValue);
        v1::ChangeObjectRequest request;
        request.set_name(board);
        auto* const change = request.add_changes();
        change->set_keyword("Driver.BoardId");
        change->set_value(value);
        v1::ChangeObjectResponse response;
        seen_.Attempt(board, value);
        const auto status =
            Call(*client->objects, &v1::Objects::Stub::ChangeObject, request, &response);
        if (status.ok()) seen_.Acknowledge(board, value);
        // Open by somebody else, or the daemon is gone.
        if (status.error_code() == grpc::StatusCode::UNAVAILABLE) return;
    }
}

void BusyClients::Operate(unsigned long seed) {
    std::mt19937_64 random(seed);
    const auto client = connect(home_, isOver_);
    while (client && !isOver_) {
        const std::string board = BoardName(static_cast<int>(random() % kBoards));
        v1::Operation operation;
        grpc::Status status;
        if (random() % 2 == 0) {
            v1::StartBoardRequest request;
            request.set_board(board);
            status =
                Call(*client->operations, &v1::Operations::Stub::StartBoard, request, &operation);
        } else {
            v1::TestBoardRequest request;
            request.set_board(board);
            status =
                Call(*client->operations, &v1::Operations::Stub::TestBoard, request, &operation);
        }
        if (!status.ok()) return;
        seen_.Given(operation.id());
        seen_.Told(operation, false);
        // Some are left alone.
        if (random() % 4 == 0) continue;
        v1::WaitOperationRequest wait;
        wait.set_id(operation.id());
        if (!Call(*client->operations, &v1::Operations::Stub::WaitOperation, wait, &operation).ok())
            return;
        seen_.Told(operation, false);
    }
}

void BusyClients::Watch() {
    const auto client = connect(home_, isOver_);
    if (!client) return;
    grpc::ClientContext context;
    v1::WatchAlertsRequest request;
    request.set_after(seen_.Newest());
    std::uint64_t last = request.after();
    const auto stream = client->alerts->WatchAlerts(&context, request);
    // Ends with the daemon.
    for (v1::WatchAlertsResponse news; stream->Read(&news);) {
        if (news.has_caught_up()) continue;
        const std::uint64_t first = news.has_gap() ? news.gap().first() : news.alert().sequence();
        if (first != last + 1)
            seen_.Fault("after number " + std::to_string(last) + " came " + std::to_string(first) +
                        " without a gap");
        last = news.has_gap() ? news.gap().last() : first;
        if (news.has_alert()) seen_.Alert(news.alert());
    }
    (void)stream->Finish();
}

void BusyClients::Raise() {
    const auto client = connect(home_, isOver_);
    while (client && !isOver_) {
        v1::NotifyAlertRequest request;
        constexpr unsigned kAlert = 0x40000001;
        request.set_code(kAlert);
        request.set_source("rig");
        request.set_text(std::to_string(++lastValue));
        v1::NotifyAlertResponse response;
        if (!Call(*client->alerts, &v1::Alerts::Stub::NotifyAlert, request, &response).ok()) return;
    }
}

}  // namespace oam::torture
