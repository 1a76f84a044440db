#include "outcomes.h"

#include <condition_variable>
#include <mutex>

#include "service.h"

namespace oam::check {
namespace {

struct Inbox {
    std::mutex lock;
    std::condition_variable changed;
    int count = 0;
};

// Never destroyed: workers may outlive the exit handlers.
Inbox& inbox() {
    static Inbox& only = *new Inbox;
    return only;
}

unsigned int receive(unsigned long client, const oam_msg_tag* message) {
    const bool isOutcome = message->code == OAMEVN_STARTBOARD_DONE ||
                           message->code == OAMEVN_STOPBOARD_DONE ||
                           message->code == OAMEVN_TESTBOARD_DONE;
    if (client != OAM_INTERNAL_CLIENT || !isOutcome) return OAM_SUCCESS;
    Inbox& box = inbox();
    const std::lock_guard hold(box.lock);
    ++box.count;
    box.changed.notify_all();
    return OAM_SUCCESS;
}

}  // namespace

void Outcomes::Listen() { (void)Service().AlertRegisterCallback(receive); }

int Outcomes::Count() {
    const std::lock_guard hold(inbox().lock);
    return inbox().count;
}

bool Outcomes::Await(int count, std::chrono::milliseconds limit) {
    Inbox& box = inbox();
    std::unique_lock hold(box.lock);
    return box.changed.wait_for(hold, limit, [&] { return box.count >= count; });
}

}  // namespace oam::check
