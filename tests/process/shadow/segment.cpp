#include "segment.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

namespace oam::test {

namespace {

constexpr size_t kNumber = 132;
constexpr size_t kDriverName = 136;
constexpr size_t kDriverBoardId = 265;
constexpr size_t kALaw = 330;
constexpr size_t kLongText = 129;
constexpr size_t kShortText = 65;

void put(std::string& bytes, size_t offset, size_t size, const std::string& text) {
    std::fill_n(bytes.begin() + static_cast<long>(offset), size, '\0');
    text.copy(bytes.data() + offset, size);
}

std::string textAt(const std::string& bytes, size_t offset, size_t size) {
    const std::string field = bytes.substr(offset, size);
    const size_t end = field.find('\0');
    EXPECT_NE(end, std::string::npos) << "a text without its terminator at " << offset;
    return field.substr(0, end);
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const ShadowRecord& record) {
    return out << record.name << "#" << record.number << " " << record.driverName << "/"
               << record.driverBoardId << (record.isALaw ? " A-law" : "");
}

std::string RecordBytes(const ShadowRecord& record, char padding) {
    std::string bytes(kRecordSize, padding);
    put(bytes, 0, kLongText, record.name);
    std::memcpy(bytes.data() + kNumber, &record.number, sizeof record.number);
    put(bytes, kDriverName, kLongText, record.driverName);
    put(bytes, kDriverBoardId, kShortText, record.driverBoardId);
    bytes[kALaw] = record.isALaw ? 1 : 0;
    return bytes;
}

std::string SegmentBytes(const std::vector<ShadowRecord>& records, bool vxPlugin) {
    return SegmentBytes(records, vxPlugin, static_cast<int32_t>(records.size()));
}

std::string SegmentBytes(const std::vector<ShadowRecord>& records, bool vxPlugin, int32_t claimed) {
    std::string bytes(sizeof claimed, '\0');
    std::memcpy(bytes.data(), &claimed, sizeof claimed);
    for (const ShadowRecord& record : records) bytes += RecordBytes(record);
    bytes += vxPlugin ? '\1' : '\0';
    bytes.resize(kSegmentSize, '\0');
    return bytes;
}

std::string Segment::Bytes() const {
    std::ifstream file(path_, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path_;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void Segment::Overwrite(const std::string& bytes, size_t offset) const {
    const int file = open(path_.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(file, 0) << path_;
    EXPECT_EQ(pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(offset)),
              static_cast<ssize_t>(bytes.size()));
    close(file);
}

void Segment::Truncate(size_t size) const {
    ASSERT_EQ(truncate(path_.c_str(), static_cast<off_t>(size)), 0) << path_;
}

void Segment::Make(const std::string& bytes) const {
    std::ofstream file(path_, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    ASSERT_TRUE(file.good()) << path_;
}

int32_t Segment::Count() const {
    int32_t count = -1;
    const std::string bytes = Bytes();
    EXPECT_EQ(bytes.size(), kSegmentSize);
    if (bytes.size() >= sizeof count) std::memcpy(&count, bytes.data(), sizeof count);
    return count;
}

ShadowRecord Segment::Record(size_t index) const {
    const std::string bytes = Bytes().substr(sizeof(int32_t) + index * kRecordSize, kRecordSize);
    ShadowRecord record;
    if (bytes.size() != kRecordSize) {
        ADD_FAILURE() << "no record " << index;
        return record;
    }
    record.name = textAt(bytes, 0, kLongText);
    std::memcpy(&record.number, bytes.data() + kNumber, sizeof record.number);
    record.driverName = textAt(bytes, kDriverName, kLongText);
    record.driverBoardId = textAt(bytes, kDriverBoardId, kShortText);
    EXPECT_LE(static_cast<unsigned char>(bytes[kALaw]), 1u);
    record.isALaw = bytes[kALaw] != 0;
    return record;
}

std::vector<std::string> Segment::Names() const {
    std::vector<std::string> names;
    for (int32_t i = 0; i < Count(); ++i) names.push_back(Record(static_cast<size_t>(i)).name);
    return names;
}

unsigned Segment::VxPlugin() const {
    const size_t offset = sizeof(int32_t) + static_cast<size_t>(Count()) * kRecordSize;
    return static_cast<unsigned char>(Bytes().at(offset));
}

}  // namespace oam::test
