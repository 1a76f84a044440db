#include "storm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <thread>

#include "caller.h"
#include "oam/entry.h"

namespace oam::torture {

namespace {

// What receivers raise is received: deeper than this they only listen.
constexpr int kDeepest = 2;
constexpr unsigned kOneCallIn = 8;
constexpr unsigned long kMostTold = 20;

std::atomic<Storm*> current{nullptr};
// Calls that may still look at it. Nobody joins the service's threads.
std::atomic<int> receiving{0};
thread_local int depth = 0;

std::string textOf(unsigned code) {
    const char* name = _oamGetText(code);
    char number[16];
    snprintf(number, sizeof number, "0x%08x", code);
    return name != nullptr ? name : number;
}

// A record whose texts do not lie within what its header says is not a record.
bool isSound(const oam_msg_tag& message) {
    return message.sourceOffset >= sizeof message && message.textOffset > message.sourceOffset &&
           message.textOffset < message.size &&
           std::strlen(oamMessageSource(&message)) < message.textOffset - message.sourceOffset;
}

}  // namespace

Storm::Storm(const SimSite& site, unsigned seed) : site_(site), seed_(seed) {
    for (const Row& row : AllRows()) {
        tallies_[row.name];
        allWeights_ += row.weight;
    }
    current = this;
    (void)_oamAlertRegisterCallback(&Receive);
}

Storm::~Storm() {
    (void)_oamAlertRegisterCallback(nullptr);
    current = nullptr;
    while (receiving > 0) std::this_thread::yield();
}

void Storm::Judge(const char* function, unsigned code, Codes documented) {
    Tally& tally = tallies_.at(function);
    ++tally.calls;
    if (code == OAM_SUCCESS) ++tally.successes;
    if (std::find(documented.begin(), documented.end(), code) != documented.end()) return;
    if (++undocumented_ <= kMostTold) ADD_FAILURE() << function << " answered " << textOf(code);
}

bool Storm::BeginQuiet() {
    constexpr std::chrono::milliseconds kPatience{50};
    if (isQuiet_.exchange(true)) return false;
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (openings_ > 0 && std::chrono::steady_clock::now() < end) std::this_thread::yield();
    return true;
}

unsigned Storm::Receive(unsigned long, const oam_msg_tag* message) {
    ++receiving;
    Storm* storm = current;
    const unsigned result = storm != nullptr ? storm->Hear(message) : 0;
    --receiving;
    return result;
}

unsigned Storm::Hear(const oam_msg_tag* message) {
    const unsigned long turn = ++heard_;
    if (!isSound(*message) && ++undocumented_ <= kMostTold) {
        ADD_FAILURE() << "an alert record is damaged";
    }
    if (!isResting_ && depth < kDeepest && turn % kOneCallIn == 0) {
        ++depth;
        ++fromReceivers_;
        Caller caller(*this, seed_ + static_cast<unsigned>(turn), Caller::Where::kInReceiver);
        caller.Prefer(oamMessageSource(message));
        caller.MakeOne();
        --depth;
    }
    return turn % 64 == 63 ? kReceiverUnwell : unsigned{OAM_SUCCESS};
}

unsigned long Storm::Calls() const {
    unsigned long calls = 0;
    for (const auto& [name, tally] : tallies_) calls += tally.calls;
    return calls;
}

}  // namespace oam::torture
