// What a module knows of each open handle, from its OpenObject to its CloseObject.
//
// The service serialises those entries with its manager lock. The map has a lock all the same, so
// that its safety does not hang on another library's.
#pragma once

#include <map>
#include <mutex>
#include <utility>

namespace oam::kit {

template <class Value>
class HandleMap {
  public:
    void Set(unsigned long handle, Value value) {
        const std::lock_guard hold(lock_);
        values_[handle] = std::move(value);
    }

    // An unknown handle has the default value.
    Value Find(unsigned long handle) const {
        const std::lock_guard hold(lock_);
        const auto found = values_.find(handle);
        return found == values_.end() ? Value{} : found->second;
    }

    Value Remove(unsigned long handle) {
        const std::lock_guard hold(lock_);
        const auto node = values_.extract(handle);
        return node.empty() ? Value{} : std::move(node.mapped());
    }

  private:
    mutable std::mutex lock_;
    std::map<unsigned long, Value> values_;
};

}  // namespace oam::kit
