// A connection to a daemon through which only so many bytes pass, as of a client that dies in the
// middle of a request.
#pragma once

#include <cstddef>
#include <thread>

#include "support/installation.h"

namespace oam::torture {

class CutConnection {
  public:
    CutConnection(const test::Installation& home, std::size_t bytes);
    ~CutConnection();
    CutConnection(const CutConnection&) = delete;
    CutConnection& operator=(const CutConnection&) = delete;

    // The client's end; whoever takes it closes it.
    int Descriptor() const { return client_; }
    // Waits for the cut: false when the client had less to say within a moment.
    bool AwaitCut();

  private:
    void Work();

    std::size_t left_;
    int client_ = -1;
    int near_ = -1;  // the other end of the client's
    int daemon_ = -1;
    bool isCut_ = false;
    std::thread thread_;
};

}  // namespace oam::torture
