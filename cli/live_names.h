// The names that a completion offers, as they are now: of the daemon when one serves the
// installation, else of the data files, since starting the service would take too long and lock out
// others.
//
// Nothing is ever a failure: what cannot be asked is empty.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "console.h"
#include "installation.h"
#include "interruption.h"

namespace oam {

class Service;
struct ScannedFile;

class LiveNames {
  public:
    explicit LiveNames(const Installation& place);
    ~LiveNames();

    std::vector<std::string> Objects();
    std::vector<std::string> Boards();
    std::vector<std::string> Products();
    std::vector<std::string> Keywords(const std::string& object);
    // What a keyword can be; a daemon's plug-ins alone know.
    std::vector<std::string> Choices(const std::string& object, const std::string& keyword);

  private:
    const Installation& place_;
    Console console_{true};
    Interruption interruption_;
    std::unique_ptr<Service> daemon_;
    std::vector<ScannedFile> files_;
};

}  // namespace oam
