#include "shadow_writer.h"

#include <fcntl.h>
#include <sanitizer/asan_interface.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>

#include "fuzz_target.h"
#include "shadow_model.h"

namespace oam::fuzz {
namespace {

struct JournalHeader {
    std::uint32_t state = 0;
    std::uint32_t unused = 0;
    std::uint64_t length = 0;
    std::uint64_t checksum = 0;
};
static_assert(sizeof(JournalHeader) == 24);

constexpr std::uint32_t kComplete = 0x4B4A524E;

// Over the length and the image: four words side by side, the rest by bytes.
std::uint64_t checksumOf(const std::vector<unsigned char>& image) {
    constexpr std::uint64_t kPrime = 0x100000001B3;
    constexpr std::uint64_t kStart = 0xCBF29CE484222325;
    std::uint64_t sums[4] = {kStart ^ image.size(), kStart + 1, kStart + 2, kStart + 3};
    std::size_t i = 0;
    for (; image.size() - i >= sizeof sums; i += sizeof sums) {
        for (std::size_t k = 0; k < 4; ++k) {
            std::uint64_t word;
            std::memcpy(&word, image.data() + i + 8 * k, sizeof word);
            sums[k] = (sums[k] ^ word) * kPrime;
        }
    }
    std::uint64_t sum = kStart;
    for (const std::uint64_t part : sums) sum = (sum ^ part ^ part >> 32) * kPrime;
    for (; i < image.size(); ++i) sum = (sum ^ image[i]) * kPrime;
    return sum;
}

}  // namespace

SharedFile::SharedFile(const std::string& path, std::size_t size)
    : descriptor_(open(path.c_str(), O_RDWR | O_CLOEXEC)), size_(size) {
    Require(descriptor_ >= 0, "the service has made its shared files");
    GuardWhatFollows(path);
}

SharedFile::~SharedFile() { close(descriptor_); }

void SharedFile::Put(const void* bytes, std::size_t size) const {
    Require(pwrite(descriptor_, bytes, size, 0) == static_cast<ssize_t>(size),
            "a shared file can be written");
}

std::vector<unsigned char> SharedFile::Contents() const {
    std::vector<unsigned char> bytes(size_);
    Require(pread(descriptor_, bytes.data(), size_, 0) == static_cast<ssize_t>(size_),
            "a shared file can be read");
    return bytes;
}

void SharedFile::Resize(std::size_t size) const {
    Require(ftruncate(descriptor_, static_cast<off_t>(size)) == 0, "a shared file can be resized");
}

void SharedFile::GuardWhatFollows(const std::string& path) const {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (!line.ends_with(path)) continue;
        char* end;
        const std::uintptr_t from = std::strtoull(line.c_str(), &end, 16);
        const std::uintptr_t to = std::strtoull(end + 1, nullptr, 16);
        Require(to - from >= size_, "a shared file is mapped whole");
        ASAN_POISON_MEMORY_REGION(reinterpret_cast<void*>(from + size_), to - from - size_);
        return;
    }
    Require(false, "the service has mapped its shared files");
}

ShadowWriter::ShadowWriter(const std::string& directory)
    : segment_(directory + "/OAM_BoardIDsShadow", kSegmentSize),
      journal_(directory + "/OAM_BoardIDsShadow.journal", sizeof(JournalHeader) + kSegmentSize) {}

void ShadowWriter::PutJournal(const void* bytes, std::size_t size) const {
    journal_.Put(bytes, std::min(size, sizeof(JournalHeader) + kSegmentSize));
}

void ShadowWriter::EmptyJournal() const {
    const JournalHeader idle;
    journal_.Put(&idle, sizeof idle);
}

void ShadowWriter::LeaveImage(const std::vector<unsigned char>& image) const {
    const JournalHeader header{kComplete, 0, image.size(), checksumOf(image)};
    std::vector<unsigned char> bytes(sizeof header + image.size());
    std::memcpy(bytes.data(), &header, sizeof header);
    std::copy(image.begin(), image.end(), bytes.begin() + sizeof header);
    PutJournal(bytes.data(), bytes.size());
}

std::optional<std::vector<unsigned char>> ShadowWriter::ImageLeft() const {
    const std::vector<unsigned char> bytes = journal_.Contents();
    JournalHeader header;
    std::memcpy(&header, bytes.data(), sizeof header);
    if (header.state != kComplete || header.length > kSegmentSize) return {};
    const auto begin = bytes.begin() + sizeof header;
    std::vector<unsigned char> image(begin, begin + static_cast<std::ptrdiff_t>(header.length));
    if (header.checksum != checksumOf(image)) return {};
    return image;
}

}  // namespace oam::fuzz
