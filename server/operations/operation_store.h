// The operations on disk. Written by the writer's thread alone, never in the path of an operation:
// what was not written when the daemon is killed is unknown afterwards, as its outcome is.
#pragma once

#include <cstddef>
#include <vector>

#include "operations/operation_book.h"
#include "operations/operation_record.h"
#include "store/store_writer.h"

namespace oam::server {

class OperationStore : public StoreJob {
  public:
    // The newest `kept` ended operations stay on disk.
    OperationStore(OperationBook& book, std::size_t kept);

    // For OperationBook::Load, at a start of the daemon, before the writer's thread: what ran is
    // unknown from now on.
    static std::vector<OperationRecord> Load(Database& database);

    bool Write(BookConnection& connection) override;

  private:
    void Save(Database& database, const std::vector<OperationRecord>& records) const;

    OperationBook& book_;
    const std::size_t kept_;
    unsigned opening_ = 0;
};

}  // namespace oam::server
