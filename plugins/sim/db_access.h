// The service's database from a plug-in's side: openings, provider mode and texts as objects.
//
// No lock of the plug-in may be held here: the functions take the service's manager lock, which
// other threads hold while they call the plug-in.
#pragma once

#include <optional>
#include <string>

#include "oam/entry.h"

namespace oam::sim {

// One opening of an object past its own plug-in, closed at the latest when it goes out of scope.
class DbOpening {
  public:
    DbOpening(const std::string& name, unsigned int mode)
        : failure_(_oamDbOpenObject(name.c_str(), &handle_, mode)), isOpen_(!failure_) {}
    ~DbOpening() { (void)Close(); }

    DbOpening(const DbOpening&) = delete;
    DbOpening& operator=(const DbOpening&) = delete;

    oam_result Failure() const { return failure_; }
    unsigned long Handle() const { return handle_; }

    // Commits what a read-write opening changed.
    oam_result Close() {
        if (!isOpen_) return OAM_SUCCESS;
        isOpen_ = false;
        return _oamDbCloseObject(handle_);
    }

  private:
    unsigned long handle_ = 0;
    oam_result failure_;
    bool isOpen_;
};

// While it lives, keywords can be created and removed through a client's read-write handle.
class ProviderMode {
  public:
    explicit ProviderMode(unsigned long handle) : handle_(handle) {
        wasKnown_ = !_oamDbGetProviderMode(handle_, &before_);
        (void)_oamDbSetProviderMode(handle_, true);
    }
    ~ProviderMode() {
        if (wasKnown_) (void)_oamDbSetProviderMode(handle_, before_);
    }

    ProviderMode(const ProviderMode&) = delete;
    ProviderMode& operator=(const ProviderMode&) = delete;

  private:
    unsigned long handle_;
    bool before_ = false;
    bool wasKnown_ = false;
};

// Nothing when it is not stored.
std::optional<std::string> readKeyword(unsigned long handle, const std::string& keyword);
std::optional<std::string> readQualifier(unsigned long handle, const std::string& keyword,
                                         const std::string& qualifier);

}  // namespace oam::sim
