#include "alert_record.h"

#include <cstring>

#include "oam/entry.h"

namespace oam::sim {
namespace {

// A text ends at its first NUL wherever it is read.
std::string_view cut(std::string_view text) {
    text = text.substr(0, AlertRecord::kLongestText);
    return text.substr(0, text.find('\0'));
}

}  // namespace

AlertRecord::AlertRecord(oam_result code, unsigned int severity, std::string_view source,
                         std::string_view text) {
    source = cut(source);
    text = cut(text);
    oam_msg_tag header{};
    header.code = code;
    header.severity = severity;
    header.sourceOffset = sizeof header;
    header.textOffset = static_cast<std::uint32_t>(header.sourceOffset + source.size() + 1);
    header.size = static_cast<std::uint32_t>(header.textOffset + text.size() + 1);

    // Zeros from the start, so each text finds its NUL in place.
    words_.assign((header.size + sizeof words_[0] - 1) / sizeof words_[0], 0);
    auto* const block = reinterpret_cast<char*>(words_.data());
    std::memcpy(block, &header, sizeof header);
    source.copy(block + header.sourceOffset, source.size());
    text.copy(block + header.textOffset, text.size());
}

void raiseAlert(oam_result code, unsigned int severity, std::string_view source,
                std::string_view text) {
    const AlertRecord record(code, severity, source, text);
    (void)_oamAlertNotify(record.Message());
}

}  // namespace oam::sim
