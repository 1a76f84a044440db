// A lane hands alerts to one kind of receiver, one alert at a time, in order.
//
// A thread that raises an alert while another is inside waits for its turn, unless it holds a
// database lock or is inside a lane itself: a receiver may be waiting for that lock, or in turn for
// that lane. Such a thread leaves a copy with the one inside and goes on, and the copy is delivered
// next. A receiver that raises alerts enters its own lane again.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "oam/codes.h"
#include "record.h"

class ReceiverLane {
  public:
    using Receiver = oam_result (*)(const oam_msg_tag* message) noexcept;

    explicit ReceiverLane(Receiver receiver) noexcept : receiver_(receiver) {}

    // The receiver's result; 0 for a copy that was left behind, OAMERR_NOT_ENOUGH_MEMORY when it
    // could not be made.
    oam_result Deliver(const oam_msg_tag* message) noexcept;

  private:
    struct Waiting {
        AlertRecord record;
        int depth;  // of foreign code on the thread that left it
        Waiting* next = nullptr;
    };

    oam_result LeaveCopy(const oam_msg_tag* message) noexcept;

    const Receiver receiver_;
    std::mutex mutex_;
    std::condition_variable left_;
    bool busy_ = false;
    std::thread::id inside_;
    Waiting* first_ = nullptr;
    Waiting** last_ = &first_;
};
