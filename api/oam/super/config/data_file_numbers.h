// Which numbers "Obj<n>.xmo" are taken, so that a new object's is found without looking at every
// object. Guarded by the manager lock.
#pragma once

#include <cstddef>
#include <memory>

class DataFileNumbers {
  public:
    // The number in a data file name of that form, or -1. What follows the number plays no part, so
    // several names may have one number.
    static long Of(const char* fileName) noexcept;

    // Names of another form are nothing to them.
    void Add(const char* fileName) noexcept;
    void Remove(const char* fileName) noexcept;
    void RemoveAll() noexcept;

    // The lowest number that nothing has; -1 when memory ran out on the way, or above all numbers
    // that are counted.
    int Lowest() const noexcept;

  private:
    static constexpr size_t kMost = size_t{1} << 18;

    bool MakeRoom(size_t number) noexcept;

    std::unique_ptr<unsigned[]> counts_;
    size_t room_ = 0;
    size_t lowest_ = 0;
    bool isComplete_ = true;
};
