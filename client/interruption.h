// SIGINT and SIGTERM ask the tool to end; it then still stops the service in good order. The second
// one of a kind has its default effect, for an operator who cannot wait for a plug-in that hangs.
// SIGPIPE is ignored: a closed pipe is an output that cannot be written.
#pragma once

namespace oam {

class Interruption {
  public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    bool IsRequested() const;
    // Readable, for poll, from the first request on.
    int Descriptor() const;
};

}  // namespace oam
