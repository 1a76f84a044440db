#include "data_file_numbers.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

long DataFileNumbers::Of(const char* fileName) noexcept {
    if (fileName == nullptr || strncmp(fileName, "Obj", 3) != 0) return -1;
    char* end;
    const long number = strtol(fileName + 3, &end, 10);
    return end != fileName + 3 ? number : -1;
}

void DataFileNumbers::Add(const char* fileName) noexcept {
    const long number = Of(fileName);
    if (number < 0 || static_cast<size_t>(number) >= kMost) return;
    if (!MakeRoom(static_cast<size_t>(number))) {
        isComplete_ = false;
        return;
    }
    ++counts_[static_cast<size_t>(number)];
    while (lowest_ < room_ && counts_[lowest_] != 0) ++lowest_;
}

void DataFileNumbers::Remove(const char* fileName) noexcept {
    const long number = Of(fileName);
    if (number < 0 || static_cast<size_t>(number) >= room_) return;
    unsigned& count = counts_[static_cast<size_t>(number)];
    if (count == 0 || --count != 0) return;
    lowest_ = std::min(lowest_, static_cast<size_t>(number));
}

void DataFileNumbers::RemoveAll() noexcept { *this = DataFileNumbers(); }

int DataFileNumbers::Lowest() const noexcept {
    return isComplete_ && lowest_ < kMost ? static_cast<int>(lowest_) : -1;
}

bool DataFileNumbers::MakeRoom(size_t number) noexcept {
    if (number < room_) return true;
    const size_t room = std::max<size_t>({64, 2 * room_, number + 1});
    std::unique_ptr<unsigned[]> grown(new (std::nothrow) unsigned[room]());
    if (grown == nullptr) return false;
    if (room_ != 0) memcpy(grown.get(), counts_.get(), room_ * sizeof(unsigned));
    counts_ = std::move(grown);
    room_ = room;
    return true;
}
