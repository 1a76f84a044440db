// What gRPC and protobuf would write to standard error themselves. A client can make them write as
// much as it likes, and a thread that writes would wait for whoever reads, with everybody else
// behind it.
#pragma once

#include "journal/journal.h"

namespace oam::server {

// While it lives, gRPC's errors go through the journal, which waits for nobody; protobuf's, about
// bytes that are no message, are answered to who sent them and not told here.
class LibraryLogs {
  public:
    explicit LibraryLogs(Journal& journal);
    ~LibraryLogs();
    LibraryLogs(const LibraryLogs&) = delete;
    LibraryLogs& operator=(const LibraryLogs&) = delete;
};

}  // namespace oam::server
