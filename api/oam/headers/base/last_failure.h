// "Call all of them, answer the last failure."
#pragma once

#include "oam/codes.h"

namespace oam {

class LastFailure {
  public:
    void Note(oam_result result) noexcept {
        if (result != OAM_SUCCESS) result_ = result;
    }
    oam_result Get() const noexcept { return result_; }

  private:
    oam_result result_ = OAM_SUCCESS;
};

}  // namespace oam
