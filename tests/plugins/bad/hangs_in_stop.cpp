// Waits for an answer that never comes.
#include <condition_variable>
#include <mutex>

#include "sound.h"

unsigned int StopBoard(const char* board) {
    static std::mutex lock;
    static std::condition_variable answered;
    static bool hasAnswer = false;
    std::unique_lock hold(lock);
    answered.wait(hold, [] { return hasAnswer; });
    return SoundStopBoard(board);
}
