// Stand-in for doors/config.h and the database's entry points: objects in memory.
//
// Handles are numbers from 1 in order of opening, so that they read well in notes. The rules of
// opening are not kept; what a test wants refused it scripts. Safe on any thread.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "oam/codes.h"

namespace oam::test {

class ConfigDoor {
  public:
    struct IgnoringCase {
        bool operator()(const std::string& left, const std::string& right) const;
    };
    using Entries = std::map<std::string, std::string, IgnoringCase>;

    static ConfigDoor& The();
    void Reset();

    void AddObject(const std::string& name, const Entries& entries = {});
    std::optional<std::string> Stored(const std::string& object, const std::string& entry) const;
    // The next openings are of this object: a handle for functions that take one.
    unsigned long Open(const std::string& object);
    size_t StillOpen() const;

    // ---- For the stand-in.
    std::optional<std::string> Get(unsigned long handle, const std::string& entry) const;
    void Set(unsigned long handle, const std::string& entry, const std::string& value);
    bool Has(const std::string& object) const;
    void Close(unsigned long handle);
    std::optional<std::string> NameAt(int index) const;

  private:
    mutable std::mutex mutex_;
    std::map<std::string, Entries, IgnoringCase> objects_;
    std::map<unsigned long, std::string> open_;
    unsigned long lastHandle_ = 0;
};

}  // namespace oam::test
