#include "alert_record.h"

#include <cstring>

namespace oam {

AlertRecord::AlertRecord(unsigned code, unsigned severity, const std::string& source,
                         const std::string& text) {
    const size_t size = sizeof(oam_msg_tag) + source.size() + text.size() + 2;
    words_.resize((size + sizeof(uint32_t) - 1) / sizeof(uint32_t));
    char* const bytes = reinterpret_cast<char*>(words_.data());
    const oam_msg_tag header{
        static_cast<uint32_t>(size), code, severity, sizeof header,
        static_cast<uint32_t>(sizeof header + source.size() + 1), 0};
    std::memcpy(bytes, &header, sizeof header);
    std::memcpy(bytes + header.sourceOffset, source.c_str(), source.size() + 1);
    std::memcpy(bytes + header.textOffset, text.c_str(), text.size() + 1);
}

}  // namespace oam
