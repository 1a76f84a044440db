// One alert record, built as oam/message.h lays it out, and its delivery.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "oam/codes.h"
#include "oam/message.h"

namespace oam::sim {

class AlertRecord {
  public:
    // What the service's own records keep of a text; a longer source or text is cut.
    static constexpr std::size_t kLongestText = 255;

    AlertRecord(oam_result code, unsigned int severity, std::string_view source,
                std::string_view text);

    // Good as long as the record lives.
    const oam_msg_tag* Message() const {
        return reinterpret_cast<const oam_msg_tag*>(words_.data());
    }

  private:
    std::vector<std::uint32_t> words_;
};

// Raises an alert. The receivers call the plug-in and the service in turn, so no lock of the
// plug-in may be held. Nothing can be done about a receiver's failure.
void raiseAlert(oam_result code, unsigned int severity, std::string_view source,
                std::string_view text);

}  // namespace oam::sim
