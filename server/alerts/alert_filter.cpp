#include "alerts/alert_filter.h"

#include <algorithm>

#include "oam/message.h"
#include "zol/zol.h"

namespace oam::server {
namespace {

std::uint32_t rankOf(std::uint32_t severity) {
    return std::min<std::uint32_t>(severity, OAM_ERROR);
}

}  // namespace

bool AlertFilter::Matches(const StoredAlert& alert) const {
    if (!codes.empty() && std::find(codes.begin(), codes.end(), alert.code) == codes.end())
        return false;
    if (rankOf(alert.severity) < rankOf(leastSeverity)) return false;
    if (!source.empty() && zolStricmp(source.c_str(), alert.source.c_str()) != 0) return false;
    return alert.text.find(textPart) != std::string::npos;
}

}  // namespace oam::server
