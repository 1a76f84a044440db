// Clients that work with a daemon which may go away at any moment, and note what they were told.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "seen.h"
#include "support/installation.h"

namespace oam::torture {

constexpr int kBoards = 8;
inline std::string BoardName(int index) { return "Sim " + std::to_string(index); }

class BusyClients {
  public:
    // They begin as soon as somebody serves the installation.
    BusyClients(const test::Installation& home, Seen& seen, unsigned long seed);
    // After the daemon's end.
    ~BusyClients();
    BusyClients(const BusyClients&) = delete;
    BusyClients& operator=(const BusyClients&) = delete;

  private:
    void Change(int first);
    void Operate(unsigned long seed);
    void Watch();
    void Raise();

    const test::Installation& home_;
    Seen& seen_;
    std::atomic<bool> isOver_{false};
    std::vector<std::thread> threads_;
};

}  // namespace oam::torture
