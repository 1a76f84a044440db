// The shadow segment as the bytes of its file, read and written without the library.
//
//   offset  bytes  field
//        0      4  number of records
//        4    332  record 0, and so on: name 129, padding 3, number 4, driver name 129,
//                  driver board id 65, A-law flag 1, padding 1
//   after the last record one byte: whether "vxplugin.bpi" is loaded
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace oam::test {

constexpr const char* kSegmentFile = "shm/OAM_BoardIDsShadow";
constexpr const char* kLockName = "OAM_BoardIDsShadowCKorSharedMemoryArray";
constexpr const char* kLockFile = "shm/OAM_BoardIDsShadowCKorSharedMemoryArray";
constexpr size_t kSegmentSize = 10624;
constexpr size_t kRecordSize = 332;
constexpr size_t kMostRecords = 31;

struct ShadowRecord {
    std::string name;
    uint32_t number = 0;
    std::string driverName;
    std::string driverBoardId;
    bool isALaw = false;
    bool operator==(const ShadowRecord&) const = default;
};
std::ostream& operator<<(std::ostream& out, const ShadowRecord& record);

// One record's bytes; texts are cut to their fields, which they may fill without a terminator.
std::string RecordBytes(const ShadowRecord& record, char padding = '\0');
// A whole segment; a count other than the number of records may be claimed.
std::string SegmentBytes(const std::vector<ShadowRecord>& records, bool vxPlugin = false);
std::string SegmentBytes(const std::vector<ShadowRecord>& records, bool vxPlugin, int32_t claimed);

class Segment {
  public:
    explicit Segment(std::string path) : path_(std::move(path)) {}

    std::string Bytes() const;
    // Overwrites in place, as a process that has it mapped would.
    void Overwrite(const std::string& bytes, size_t offset = 0) const;
    void Truncate(size_t size) const;
    // Makes the file with these bytes, as another process has left it.
    void Make(const std::string& bytes) const;

    int32_t Count() const;
    ShadowRecord Record(size_t index) const;
    std::vector<std::string> Names() const;
    // The byte after the last record.
    unsigned VxPlugin() const;

  private:
    std::string path_;
};

}  // namespace oam::test
