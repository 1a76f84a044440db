#include "fleet/agent/say.h"

#include <cstdio>

#include "foreign_text.h"

namespace oam::fleet {

void Say(const std::string& text) {
    // One write, so that lines of several threads stay whole.
    std::fputs(("oam-fleetd: " + Shown(text) + '\n').c_str(), stderr);
}

void Matter::IsBad(const std::string& text) {
    {
        const std::lock_guard hold(mutex_);
        if (isBad_ && said_ == text) return;
        isBad_ = true;
        said_ = text;
    }
    Say(text);
}

void Matter::IsWell(const std::string& text) {
    {
        const std::lock_guard hold(mutex_);
        if (!isBad_) return;
        isBad_ = false;
    }
    Say(text);
}

}  // namespace oam::fleet
