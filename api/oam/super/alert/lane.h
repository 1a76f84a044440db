// A lane hands alerts to one kind of receiver, one alert at a time, in order.
//
// A thread that raises an alert while another is inside waits for its turn, unless it holds a
// database lock or is inside a lane itself: a receiver may be waiting for that lock, or in turn for
// that lane. Such a thread leaves a copy with the one inside and goes on, and the copy is delivered
// next. A receiver that raises alerts enters its own lane again.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "oam/codes.h"
#include "record.h"

class ReceiverLane {
  public:
    using Receiver = oam_result (*)(const oam_msg_tag* message) noexcept;

    explicit ReceiverLane(Receiver receiver) noexcept : receiver_(receiver) {}

    // The receiver's result; 0 for a copy that was left behind, OAMERR_NOT_ENOUGH_MEMORY when it
    // could not be made.
    oam_result Deliver(const oam_msg_tag* message) noexcept;

    // Marks the calling thread as inside a lane.
    class Inside {
      public:
        explicit Inside(const ReceiverLane* lane) noexcept;
        ~Inside();
        Inside(const Inside&) = delete;
        Inside& operator=(const Inside&) = delete;

        static bool Is(const ReceiverLane* lane) noexcept;

      private:
        const ReceiverLane* const lane_;
        const Inside* const outer_;
    };

  private:
    // Wanted: somebody waits, or has left a copy. A lane that nobody else wants is entered and left
    // without a lock.
    enum State : int { kFree, kBusy, kWanted };

    struct Waiting {
        AlertRecord record;
        int depth;  // of foreign code on the thread that left it
        Waiting* next = nullptr;
    };

    bool Enter() noexcept;
    void DeliverCopies() noexcept;
    oam_result LeaveCopy(const oam_msg_tag* message) noexcept;

    const Receiver receiver_;
    std::atomic<int> state_{kFree};
    // What follows: of those who want a lane in which somebody is.
    std::mutex mutex_;
    std::condition_variable left_;
    Waiting* first_ = nullptr;
    Waiting** last_ = &first_;
};
