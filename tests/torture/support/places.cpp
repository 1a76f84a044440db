#include "places.h"

#include <unistd.h>

#include <chrono>

namespace oam::torture {

namespace {

Places places;

// The calling thread's own, from its first call to its end.
class OwnPlace {
  public:
    OwnPlace() {
        for (Place& place : places) {
            pid_t free = 0;
            if (!place.thread.compare_exchange_strong(free, gettid())) continue;
            place_ = &place;
            return;
        }
    }
    ~OwnPlace() {
        if (place_ != nullptr) place_->thread = 0;
    }
    OwnPlace(const OwnPlace&) = delete;
    OwnPlace& operator=(const OwnPlace&) = delete;

    Place* Get() { return place_; }

  private:
    Place* place_ = nullptr;
};

Place* ownPlace() {
    thread_local OwnPlace place;
    return place.Get();
}

}  // namespace

Places& AllPlaces() { return places; }

std::int64_t NowMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

InCall::InCall(const char* call) noexcept : place_(ownPlace()) {
    if (place_ == nullptr) return;
    outerCall_ = place_->call;
    outerSince_ = place_->since;
    place_->since = NowMs();
    place_->call = call;
}

InCall::~InCall() {
    if (place_ == nullptr) return;
    place_->call = outerCall_;
    place_->since = outerSince_;
}

}  // namespace oam::torture
