// Whose handle is this? OpenObject and CloseObject keep the list.
//
// A handle is opaque; the entries that take one are the same for the plug-in's own object and for
// its boards. The service serialises them with its manager lock. The list has a lock all the same,
// so that its safety does not hang on another library's.
#pragma once

#include <map>
#include <mutex>
#include <string>

namespace oam::sim {

// An object as it was opened: a pending new name is not its name yet.
struct OpenedObject {
    std::string name{};
    bool isPlugIn = false;
    bool isWritable = false;
};

class OpenHandles {
  public:
    void Add(unsigned long handle, const OpenedObject& object) {
        const std::lock_guard hold(lock_);
        handles_[handle] = object;
    }

    // An unknown handle is a board's that nobody writes.
    OpenedObject Find(unsigned long handle) const {
        const std::lock_guard hold(lock_);
        const auto found = handles_.find(handle);
        return found == handles_.end() ? OpenedObject{} : found->second;
    }

    OpenedObject Remove(unsigned long handle) {
        const std::lock_guard hold(lock_);
        const auto node = handles_.extract(handle);
        return node.empty() ? OpenedObject{} : node.mapped();
    }

  private:
    mutable std::mutex lock_;
    std::map<unsigned long, OpenedObject> handles_;
};

}  // namespace oam::sim
