// An alert record made of its parts, as _oamAlertNotify takes it.
#pragma once

#include <string>
#include <vector>

#include "oam/message.h"

namespace oam {

class AlertRecord {
  public:
    // Texts without NUL.
    AlertRecord(unsigned code, unsigned severity, const std::string& source,
                const std::string& text);

    // Valid as long as this lives.
    const oam_msg_tag* Get() const {
        return reinterpret_cast<const oam_msg_tag*>(words_.data());
    }

  private:
    std::vector<uint32_t> words_;  // aligned as the header is
};

}  // namespace oam
