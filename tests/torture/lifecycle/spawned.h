// A program that is run to its end, for a limited time.
#pragma once

#include <string>
#include <vector>

namespace oam::torture {

struct Ended {
    bool isHung = false;  // it did not end by itself
    int status = 0;       // as waitpid gives it

    bool IsFine() const;
};
std::ostream& operator<<(std::ostream& out, const Ended& ended);

// The first word is the program. One that does not end in time is asked with SIGUSR1 to tell where
// its threads are, and then killed.
Ended RunToItsEnd(const std::vector<std::string>& words);

// For the program: tells it when it is asked, and aborts.
void TellPlacesWhenAsked();

}  // namespace oam::torture
