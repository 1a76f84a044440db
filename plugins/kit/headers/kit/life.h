// The one object that a module's entries work on, from Init to Exit.
//
// Every entry takes a share of it for the time of its call, so Exit frees nothing under a thread
// that is still busy. No exception leaves an entry. The place itself is never freed, because a
// thread may still be in an entry while the process's exit handlers run.
//
// The type has Begin, which answers a code, and End, after which busy threads come back soon.
#pragma once

#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include "oam/codes.h"

namespace oam::kit {

template <class Body>
unsigned int withoutExceptions(const Body& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return OAMERR_NOT_ENOUGH_MEMORY;
    } catch (...) {
        return OAM_REASON_FAILED;
    }
}

template <class Type>
class Life {
  public:
    // The module's only one.
    static Life& Place() {
        static Life& place = *new Life;
        return place;
    }

    template <class... Arguments>
    unsigned int Begin(const Arguments&... arguments) noexcept {
        return withoutExceptions([&] {
            EndCurrent();
            const auto made = std::make_shared<Type>(arguments...);
            if (auto failed = made->Begin()) return failed;
            Exchange(made);
            return OAM_SUCCESS;
        });
    }

    unsigned int End() noexcept {
        return withoutExceptions([this] {
            EndCurrent();
            return OAM_SUCCESS;
        });
    }

    template <class Body>
    unsigned int With(const Body& body) noexcept {
        return withoutExceptions([&]() -> unsigned int {
            const auto current = Current();
            return current ? body(*current) : OAMERR_SERVER_NOT_RUNNING;
        });
    }

  private:
    Life() = default;

    std::shared_ptr<Type> Current() {
        const std::lock_guard hold(lock_);
        return current_;
    }

    std::shared_ptr<Type> Exchange(std::shared_ptr<Type> next) {
        const std::lock_guard hold(lock_);
        return std::exchange(current_, std::move(next));
    }

    void EndCurrent() {
        if (const auto ended = Exchange(nullptr)) ended->End();
    }

    std::mutex lock_;
    std::shared_ptr<Type> current_;
};

}  // namespace oam::kit
