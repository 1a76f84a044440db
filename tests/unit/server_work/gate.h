// A task that hangs until the test lets it go, and tells when it has begun.
#pragma once

#include <functional>
#include <future>

namespace oam::server::test {

class Gate {
  public:
    // May be posted once.
    std::function<void()> Task() {
        return [this] {
            begun_.set_value();
            open_.get_future().wait();
        };
    }
    void AwaitBegun() { begun_.get_future().wait(); }
    void Open() { open_.set_value(); }

  private:
    std::promise<void> begun_;
    std::promise<void> open_;
};

}  // namespace oam::server::test
