// What all callers of one storm share: the count and the judgement of every call, the receiver of
// alerts that calls back, and the moments without open objects that an import needs.
#pragma once

#include <atomic>
#include <initializer_list>
#include <map>
#include <string>

#include "oam/message.h"
#include "row.h"
#include "support/sim_site.h"

namespace oam::torture {

using Codes = std::initializer_list<unsigned>;

// What the receiver answers now and then.
constexpr unsigned kReceiverUnwell = 0x50030001;

class Storm {
  public:
    Storm(const SimSite& site, unsigned seed);
    ~Storm();
    Storm(const Storm&) = delete;
    Storm& operator=(const Storm&) = delete;

    const SimSite& Site() const { return site_; }
    unsigned Seed() const { return seed_; }
    // Of all rows together.
    unsigned AllWeights() const { return allWeights_; }
    // A client that nobody else has.
    unsigned long NewClient() { return ++lastClient_; }

    // Counts the call; a code that the function's description does not name fails the test.
    void Judge(const char* function, unsigned code, Codes documented);

    // ---- Open objects of all callers
    void NoteOpened() { ++openings_; }
    void NoteClosed() { --openings_; }
    bool IsQuiet() const { return isQuiet_; }  // nobody opens anything
    // Asks everybody to close and waits for it, for a while. False when another one asks already.
    bool BeginQuiet();
    void EndQuiet() { isQuiet_ = false; }

    // The alert callback. Makes calls itself, on the thread that raised the alert.
    static unsigned Receive(unsigned long client, const oam_msg_tag* message);
    // From now on the receiver only listens.
    void Rest() { isResting_ = true; }

    struct Tally {
        std::atomic<unsigned long> calls{0};
        std::atomic<unsigned long> successes{0};
    };
    const std::map<std::string, Tally>& Tallies() const { return tallies_; }
    unsigned long Calls() const;
    unsigned long FromReceivers() const { return fromReceivers_; }
    unsigned long Undocumented() const { return undocumented_; }

  private:
    unsigned Hear(const oam_msg_tag* message);

    const SimSite& site_;
    const unsigned seed_;
    unsigned allWeights_ = 0;
    std::map<std::string, Tally> tallies_;  // one for each function, made before any call
    std::atomic<unsigned long> lastClient_{1000};
    std::atomic<unsigned long> heard_{0};
    std::atomic<unsigned long> fromReceivers_{0};
    std::atomic<unsigned long> undocumented_{0};
    std::atomic<int> openings_{0};
    std::atomic<bool> isQuiet_{false};
    std::atomic<bool> isResting_{false};
};

}  // namespace oam::torture
