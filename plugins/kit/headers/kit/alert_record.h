// One alert record, built as oam/message.h lays it out, and its delivery.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "oam/entry.h"

namespace oam::kit {

class AlertRecord {
  public:
    // What the service's own records keep of a text; a longer source or text is cut.
    static constexpr std::size_t kLongestText = 255;

    AlertRecord(unsigned int code, unsigned int severity, std::string_view source,
                std::string_view text) {
        source = Cut(source);
        text = Cut(text);
        oam_msg_tag header{};
        header.code = code;
        header.severity = severity;
        header.sourceOffset = sizeof header;
        header.textOffset = static_cast<std::uint32_t>(sizeof header + source.size() + 1);
        header.size = static_cast<std::uint32_t>(header.textOffset + text.size() + 1);

        // Zeros from the start, so each text finds its NUL in place.
        block_.resize((header.size + sizeof header - 1) / sizeof header);
        block_.front() = header;
        auto* const bytes = reinterpret_cast<char*>(block_.data());
        source.copy(bytes + header.sourceOffset, source.size());
        text.copy(bytes + header.textOffset, text.size());
    }

    // Good as long as the record lives.
    const oam_msg_tag* Message() const { return block_.data(); }

  private:
    // A text ends at its first NUL wherever it is read.
    static std::string_view Cut(std::string_view text) {
        text = text.substr(0, kLongestText);
        return text.substr(0, text.find('\0'));
    }

    std::vector<oam_msg_tag> block_;
};

// Raises an alert. The receivers call the module and the service in turn, so no lock of the module
// may be held. Nothing can be done about a receiver's failure.
inline void raiseAlert(unsigned int code, unsigned int severity, std::string_view source,
                       std::string_view text) {
    const AlertRecord record(code, severity, source, text);
    (void)_oamAlertNotify(record.Message());
}

}  // namespace oam::kit
