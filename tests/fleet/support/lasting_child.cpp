#include "lasting_child.h"

namespace oam::test {

// Each step is the same process, so its id is that of the program.
std::unique_ptr<ChildProcess> StartLasting(const std::vector<std::string>& settings,
                                           const std::vector<std::string>& command,
                                           const std::string& directory,
                                           const std::string& output) {
    std::vector<std::string> whole{"/usr/bin/env"};
    whole.insert(whole.end(), settings.begin(), settings.end());
    whole.insert(whole.end(), {"/usr/bin/setpriv", "--pdeathsig", "KILL", "/bin/sh", "-c",
                               "out=$1; shift; exec \"$@\" >>\"$out\" 2>&1", "sh", output});
    whole.insert(whole.end(), command.begin(), command.end());
    return std::make_unique<ChildProcess>(whole, directory);
}

}  // namespace oam::test
