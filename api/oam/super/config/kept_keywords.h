// The objects that keep their keywords while they are closed, so that one whose data file has not
// changed is opened without reading it. What they take together is bounded: the one that was closed
// first gives them up first. Guarded by the manager lock.
#pragma once

#include "objects/object.h"

constexpr size_t kMostKeptBytes = size_t{16} << 20;

class KeptKeywords {
  public:
    // The keywords of an object that has just been closed; they take so many bytes.
    void Add(KOR_CMObject* object, size_t bytes) noexcept;
    // The object is opened again, or destroyed; nothing when it keeps none.
    void Remove(KOR_CMObject* object) noexcept;
    size_t Bytes() const noexcept { return bytes_; }

    // While one lives, what an object keeps is what it opens with, without a look at its file.
    class Trust {
      public:
        Trust() noexcept;
        ~Trust();
        Trust(const Trust&) = delete;
        Trust& operator=(const Trust&) = delete;
    };
    bool AreTrusted() const noexcept { return trusts_ != 0; }

  private:
    KeptLink ends_{&ends_, &ends_, nullptr, 0};  // of a ring: after it the first that was closed
    size_t bytes_ = 0;
    int trusts_ = 0;
};

KeptKeywords& keptKeywords() noexcept;
