// What survives the worker's death: its intentions, its acknowledgements, and the order in which
// they took effect.
//
// It lies in memory that the worker shares with the test process. A client thread tells a step
// before its call begins and what the call answered after it returned; both are single stores, so a
// death leaves a step told or untold, acknowledged or not.
//
// The order is taken where nothing else can come between: by the plug-in while it is called under
// the manager lock (creations, deletions, imports), or while the object is open read-write, which
// keeps other changes, exports and imports out. So whatever the threads did at once has one order
// in which it happened. A step without a place in it has changed nothing.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace oam::torture {

enum class Verb : std::uint32_t { kCreate, kChange, kDelete, kSettings, kExport, kImport };
const char* NameOf(Verb verb);

struct Step {
    static constexpr std::uint32_t kUnderWay = 0xFFFFFFFF;

    Verb verb;
    char object[64];      // a board, or the file of an export or import
    char newName[64];     // of a rename; empty for none
    std::uint64_t stamp;  // what a change puts in the place of the basis
    std::uint64_t basis;  // what it found there
    std::uint64_t begun;  // the last place given away before the call
    std::uint64_t ended;  // the same after it
    std::atomic<std::uint64_t> place;
    std::atomic<std::uint32_t> code;
};

// "change P0 1 -> P0 r17, 12 to 17, place 40: 0x0"
std::string TextOf(const Step& step);

// One client thread's steps. When it is full the thread rests until the process is killed.
class Lane {
  public:
    static constexpr std::size_t kRoom = 4096;

    std::size_t Count() const { return count_.load(std::memory_order_acquire); }
    const Step& At(std::size_t index) const { return steps_[index]; }
    bool IsFull() const { return Count() == kRoom; }

    // The next step, to be filled in; it is told by Tell.
    Step& Next();
    void Tell() { count_.fetch_add(1, std::memory_order_release); }
    void Clear() { count_ = 0; }

  private:
    std::atomic<std::size_t> count_;
    std::array<Step, kRoom> steps_;
};

struct Oracle {
    static constexpr std::size_t kLanes = 4;
    static constexpr std::size_t kSaves = 4;

    // Anonymous shared memory, all zero; it is never given back.
    static Oracle& Make();

    std::uint64_t NextStamp() { return ++stamps; }
    void Place(Step& step) { step.place.store(++places, std::memory_order_release); }

    // The first fault that a process has seen counts.
    void Tell(const std::string& fault);
    std::string Fault() const;

    std::atomic<std::uint64_t> stamps;
    std::atomic<std::uint64_t> places;
    std::array<Lane, kLanes> lanes;

    // Stamps of exports that may be imported; 0 for none.
    std::array<std::atomic<std::uint64_t>, kSaves> saves;

    // What the worker found when it started.
    char report[1 << 18];
    // How often the watcher has gone through the shadow.
    std::atomic<std::uint64_t> sweeps;

    std::atomic<bool> hasFault;
    char fault[2048];
};

}  // namespace oam::torture
