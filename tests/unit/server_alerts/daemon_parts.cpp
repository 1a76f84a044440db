#include "daemon_parts.h"

#include <filesystem>

#include "alerts.h"
#include "unit/sim/waiting.h"

namespace oam::server {

StoreWriter::Complain Complaints::Listener() {
    return [this](const std::string& text) {
        const std::lock_guard hold(mutex_);
        texts_.push_back(text);
    };
}

std::vector<std::string> Complaints::All() const {
    const std::lock_guard hold(mutex_);
    return texts_;
}

std::size_t Complaints::Count(const std::string& part) const {
    std::size_t count = 0;
    for (const std::string& text : All()) count += text.find(part) != std::string::npos;
    return count;
}

bool Complaints::Await(const std::string& part) const {
    return sim::becomesTrue([&] { return Count(part) > 0; });
}

namespace {

std::vector<OperationRecord> loadOperations(const std::string& path) {
    Database database(path);
    return OperationStore::Load(database);
}

}  // namespace

DaemonParts::DaemonParts(const std::string& where, const PartSizes& sizes)
    : directory(where),
      numbers(NumbersPath(), !std::filesystem::exists(BookPath()), sizes.block),
      ring(numbers.LastAlert(), sizes.ring, &bell),
      operations(numbers.Start(), sizes.operations, &bell),
      alertWriter(ring, numbers, sizes.alerts, complaints.Listener()),
      operationStore(operations, sizes.operations) {
    try {
        operations.Load(loadOperations(BookPath()));
    } catch (const StoreError&) {
        // The writer says so.
    }
    writer = std::make_unique<StoreWriter>(bell, BookPath(),
                                           std::vector<StoreJob*>{&alertWriter, &operationStore},
                                           complaints.Listener(), sizes.pause);
}

DaemonParts::~DaemonParts() {
    ring.Close();
    writer.reset();
}

StoredAlert DaemonParts::AlertOfText(const std::string& text) { return AlertOf(text); }

bool DaemonParts::AwaitWritten(std::uint64_t last) const {
    return sim::becomesTrue([&] { return alertWriter.Written() >= last; });
}

OperationRecord DaemonParts::RunOperation(const std::string& board) {
    const OperationRecord begun = operations.Begin(OperationKind::kStart, board, "root");
    StoredAlert outcome = OutcomeOf(OAMEVN_STARTBOARD_DONE, board, "Board is started.\n");
    outcome.operation = operations.OnAlert(outcome);
    const std::string id = outcome.operation;
    operations.Number(id, ring.Publish(std::move(outcome)));
    return *operations.Find(begun.id);
}

std::vector<StoredAlert> ReadBook(const std::string& path) {
    Database database(path);
    AlertBook book(database);
    std::vector<StoredAlert> alerts;
    for (std::uint64_t after = 0;;) {
        const AlertBook::Page page = book.Read(after, 1000, {});
        if (page.scanned == after) return alerts;
        after = page.scanned;
        alerts.insert(alerts.end(), page.alerts.begin(), page.alerts.end());
    }
}

}  // namespace oam::server
