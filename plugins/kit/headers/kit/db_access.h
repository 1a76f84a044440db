// The service's database from a module's side: openings, provider mode and texts as objects.
//
// No lock of the module may be held here: the functions take the service's manager lock, which
// other threads hold while they call the module.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "kit/kept_text.h"
#include "oam/entry.h"

namespace oam::kit {

// One opening of an object past its own module, closed at the latest when it goes out of scope.
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
    explicit ProviderMode(unsigned long handle)
        : handle_(handle), isKnown_(!_oamDbGetProviderMode(handle, &before_)) {
        (void)_oamDbSetProviderMode(handle_, true);
    }
    ~ProviderMode() {
        if (isKnown_) (void)_oamDbSetProviderMode(handle_, before_);
    }
    ProviderMode(const ProviderMode&) = delete;
    ProviderMode& operator=(const ProviderMode&) = delete;

  private:
    unsigned long handle_;
    bool before_ = false;
    bool isKnown_;
};

// Nothing when it is not stored.
inline std::optional<std::string> readKeyword(unsigned long handle, const std::string& keyword) {
    std::array<char, kLongestValue + 1> text;
    if (_oamDbGetKeyword(handle, keyword.c_str(), text.data(), text.size())) return {};
    return text.data();
}

// A value that is no such number reads as `usual`.
inline long long readNumber(unsigned long handle, const std::string& keyword, long long min,
                            long long max, long long usual) {
    return boundedNumber(readKeyword(handle, keyword).value_or(""), min, max).value_or(usual);
}

}  // namespace oam::kit
