// One host's configuration to crash: a template with many objects, and copies of it in which a
// child does something and is interrupted.
//
// A child of its own looks at what is left, so that nothing of the interrupted one is in memory.
// The library is never started in the test process itself.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "oam/codes.h"
#include "plugins/recorder/host.h"
#include "support/installation.h"

namespace oam::torture {

// What a configuration holds, as text: every object with every entry, in order.
std::string StateDigest();

struct Look {
    bool isStarted = false;           // _oamInit succeeded
    std::string digest;               // what it then held
    std::vector<std::string> strays;  // files of "oam/cfg" that are no data files
};

class Host {
  public:
    static constexpr int kBoards = 4;

    // So many objects, "Prod 0" to "Prod 3" (boards) and "Thing 4", "Thing 5", ...: few boards,
    // since stopping each before an import takes its time. `parent`: where it lies.
    explicit Host(int objects, const std::string& parent = "/tmp");
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    // Makes the working copy anew, and the environment point at it.
    void Renew();
    // Adds to every working copy from now on.
    void WriteToTemplate(const std::string& relative, const std::string& bytes);
    // What the working copy now is, every one is from now on.
    void TakeAsTemplate();
    // A path in the working copy.
    std::string Path(const std::string& relative) const;

    // The service starts in a child on the working copy and tells what it finds.
    Look LookAt() const;

    // For a child: a line for the test process, which reads what the last child told.
    void Tell(const std::string& text) const;
    std::string Told() const;

  private:
    test::Installation home_;  // the template lies in "t", the working copy in "w"
    test::Recorder recorder_;
};

}  // namespace oam::torture
