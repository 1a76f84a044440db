// The rooms put together as the daemon does, in an installation of the test's.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "alerts/alert_ring.h"
#include "alerts/alert_writer.h"
#include "operations/operation_book.h"
#include "operations/operation_store.h"
#include "store/bell.h"
#include "store/numbers.h"
#include "store/store_writer.h"
#include "support/installation.h"

namespace oam::server {

// What the log would get.
class Complaints {
  public:
    StoreWriter::Complain Listener();
    std::vector<std::string> All() const;
    // How many hold this text.
    std::size_t Count(const std::string& part) const;
    // False when none comes.
    bool Await(const std::string& part) const;

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> texts_;
};

struct PartSizes {
    std::size_t ring = 10000;
    std::size_t alerts = 100000;
    std::size_t operations = 100;
    std::uint64_t block = Numbers::kBlock;
    std::chrono::milliseconds pause{5};
};

class DaemonParts {
  public:
    // In the directory that these paths name.
    explicit DaemonParts(const std::string& directory, const PartSizes& sizes = {});
    // An orderly end.
    ~DaemonParts();

    std::string BookPath() const { return directory + "/oamd.db"; }
    std::string NumbersPath() const { return directory + "/oamd.numbers"; }

    std::uint64_t Publish(const std::string& text) { return ring.Publish(AlertOfText(text)); }
    // False when it does not come.
    bool AwaitWritten(std::uint64_t last) const;
    // Begins, ends and numbers one.
    OperationRecord RunOperation(const std::string& board);

    const std::string directory;
    Complaints complaints;
    Bell bell;
    Numbers numbers;
    AlertRing ring;
    OperationBook operations;
    AlertWriter alertWriter;
    OperationStore operationStore;
    std::unique_ptr<StoreWriter> writer;

  private:
    static StoredAlert AlertOfText(const std::string& text);
};

// All alerts of the book of a daemon that has ended, or of one that runs.
std::vector<StoredAlert> ReadBook(const std::string& path);

}  // namespace oam::server
