// Process-wide state that is never destroyed.
//
// A detached thread may still run while the process's exit handlers do; it must find every lock and
// table alive. So such state is made at its first use and left to the process's end.
#pragma once

#include <new>
#include <utility>

namespace oam {

template <class T>
class Forever {
  public:
    template <class... Args>
    explicit Forever(Args&&... args) noexcept {
        new (storage_) T(std::forward<Args>(args)...);
    }
    T& Get() noexcept { return *std::launder(reinterpret_cast<T*>(storage_)); }

  private:
    alignas(T) unsigned char storage_[sizeof(T)];
};

}  // namespace oam
