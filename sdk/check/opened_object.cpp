#include "opened_object.h"

#include <array>

#include "entry_call.h"
#include "service.h"

namespace oam::check {
namespace {

constexpr unsigned long kClient = 7;
// Longer than every text that a data file can hold.
using LongText = std::array<char, 4096>;
constexpr int kMostKeywords = 20000;

}  // namespace

OpenedObject::OpenedObject(const std::string& name, unsigned int mode)
    : name_(name),
      failure_(Service().OpenObject(kClient, name.c_str(), &handle_, mode)),
      isOpen_(!failure_) {}

oam_result OpenedObject::Close() {
    if (!isOpen_) return OAM_SUCCESS;
    isOpen_ = false;
    return Service().CloseObject(handle_);
}

std::optional<std::string> OpenedObject::Get(const std::string& keyword) const {
    LongText text;
    if (Service().GetKeyword(handle_, keyword.c_str(), text.data(), text.size())) return {};
    return text.data();
}

std::optional<std::string> OpenedObject::GetQualifier(const std::string& keyword,
                                                      const std::string& qualifier) const {
    LongText text;
    const auto failed = Service().GetQualifier(handle_, keyword.c_str(), qualifier.c_str(),
                                               text.data(), text.size());
    if (failed || CallHistory::LastResult(Entry::GetQualifier) != OAM_SUCCESS) return {};
    return text.data();
}

oam_result OpenedObject::Set(const std::string& keyword, const std::string& value) const {
    return Service().SetKeyword(handle_, keyword.c_str(), value.c_str());
}

std::vector<std::string> OpenedObject::Keywords() const {
    std::vector<std::string> names;
    LongText name;
    for (int i = 0; i < kMostKeywords; ++i) {
        if (Service().DbEnumKeywords(handle_, i, name.data(), name.size())) break;
        std::string entry = name.data();
        if (entry.find('?') == std::string::npos) names.push_back(std::move(entry));
    }
    return names;
}

}  // namespace oam::check
