#include "fake_service.h"

#include <chrono>
#include <cstring>
#include <iterator>

#include "waiting.h"

namespace oam::sim {
namespace {

FakeService* s_current = nullptr;

oam_result answer(const std::string& text, char* buffer, unsigned int size) {
    if (buffer == nullptr) return OAM_SUCCESS;
    if (text.size() >= size) return OAMERR_NOT_ENOUGH_MEMORY;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return OAM_SUCCESS;
}

}  // namespace

FakeService::FakeService() { s_current = this; }
FakeService::~FakeService() { s_current = nullptr; }
FakeService& FakeService::Current() { return *s_current; }

void FakeService::AddObject(const std::string& name, const std::string& product) {
    const std::lock_guard hold(lock_);
    auto& entries = objects_[name];
    entries["Name"] = name;
    entries["Name?Type"] = "Object";
    if (!product.empty()) entries["Product"] = product;
}

void FakeService::RemoveObject(const std::string& name) {
    const std::lock_guard hold(lock_);
    objects_.erase(name);
}

void FakeService::Store(const std::string& object, const std::string& entry,
                        const std::string& value) {
    const std::lock_guard hold(lock_);
    objects_.at(object)[entry] = value;
}

std::optional<std::string> FakeService::Stored(const std::string& object,
                                               const std::string& entry) const {
    const std::lock_guard hold(lock_);
    const auto found = objects_.find(object);
    if (found == objects_.end() || !found->second.contains(entry)) return {};
    return found->second.at(entry);
}

unsigned long FakeService::Open(const std::string& object, unsigned int mode) {
    unsigned long handle = 0;
    return OpenDb(object, mode, &handle) ? 0 : handle;
}

oam_result FakeService::OpenDb(const std::string& name, unsigned int mode, unsigned long* handle) {
    const std::lock_guard hold(lock_);
    const auto found = objects_.find(name);
    if (found == objects_.end()) return OAMERR_NOT_FOUND;
    const bool isWritable = (mode & OAM_OPEN_WRITE) != 0;
    for (const auto& [other, opening] : openings_) {
        const bool isSame = kit::sameText(opening.object, name);
        if (isSame && (isWritable || opening.isWritable)) return OAMERR_ACCESS_DENIED;
    }
    *handle = nextHandle_++;
    openings_[*handle] = {.object = found->first,
                          .isWritable = isWritable,
                          .isProvider = (mode & OAM_OPEN_PROVIDER) != 0,
                          .entries = found->second};
    return OAM_SUCCESS;
}

void FakeService::Close(unsigned long handle) {
    const std::lock_guard hold(lock_);
    const auto node = openings_.extract(handle);
    const auto& opening = node.mapped();
    if (!opening.isWritable || !objects_.contains(opening.object)) return;
    objects_.erase(opening.object);
    objects_[opening.entries.at("Name")] = opening.entries;
}

void FakeService::Drop(unsigned long handle) {
    const std::lock_guard hold(lock_);
    openings_.erase(handle);
}

oam_result FakeService::SetEntry(unsigned long handle, const std::string& entry,
                                 const std::string& value, bool isQualifier) {
    const std::lock_guard hold(lock_);
    auto& opening = openings_.at(handle);
    const bool needsProvider = isQualifier || !opening.entries.contains(entry);
    if (!opening.isWritable || (needsProvider && !opening.isProvider)) return OAMERR_ACCESS_DENIED;
    opening.entries[entry] = value;
    return OAM_SUCCESS;
}

oam_result FakeService::GetEntry(unsigned long handle, const std::string& entry, char* buffer,
                                 unsigned int size) const {
    const std::lock_guard hold(lock_);
    const auto& entries = openings_.at(handle).entries;
    const auto found = entries.find(entry);
    return found == entries.end() ? OAMERR_NOT_FOUND : answer(found->second, buffer, size);
}

oam_result FakeService::RemoveEntry(unsigned long handle, const std::string& entry) {
    const std::lock_guard hold(lock_);
    auto& opening = openings_.at(handle);
    if (!opening.isWritable || !opening.isProvider) return OAMERR_ACCESS_DENIED;
    return opening.entries.erase(entry) == 0 ? OAMERR_NOT_FOUND : OAM_SUCCESS;
}

bool* FakeService::Provider(unsigned long handle) {
    const std::lock_guard hold(lock_);
    return &openings_.at(handle).isProvider;
}

oam_result FakeService::NameAt(int index, char* buffer, unsigned int size) const {
    const std::lock_guard hold(lock_);
    if (index < 0 || static_cast<std::size_t>(index) >= objects_.size()) return OAMERR_NOT_FOUND;
    return answer(std::next(objects_.begin(), index)->first, buffer, size);
}

oam_result FakeService::BoardValue(const std::string& board, const std::string& entry,
                                   std::string* value) const {
    if (!tableAnswers_) return OAMERR_SERVER_NOT_RUNNING;
    if (!Stored(board, "Product")) return OAMERR_NOT_FOUND;
    *value = Stored(board, entry).value_or("");
    return OAM_SUCCESS;
}

oam_result FakeService::BoardAt(unsigned int bus, unsigned int slot, char* buffer,
                                unsigned int size) const {
    if (!tableAnswers_) return OAMERR_SERVER_NOT_RUNNING;
    const std::lock_guard hold(lock_);
    for (const auto& [name, entries] : objects_) {
        const auto holds = [&, &stored = entries](const char* entry, unsigned int number) {
            const auto found = stored.find(entry);
            return found != stored.end() && found->second == std::to_string(number);
        };
        if (holds("Location.PCI.Bus", bus) && holds("Location.PCI.Slot", slot)) {
            return answer(name, buffer, size);
        }
    }
    return OAMERR_NOT_FOUND;
}

void FakeService::OnAlert(std::function<void(const oam_msg_tag*)> receiver) {
    const std::lock_guard hold(lock_);
    receiver_ = std::move(receiver);
}

void FakeService::Raise(const oam_msg_tag* message) {
    std::unique_lock hold(lock_);
    const auto receiver = receiver_;
    hold.unlock();
    if (receiver) receiver(message);
    hold.lock();
    alerts_.push_back(
        {message->code, message->severity, oamMessageSource(message), oamMessageText(message)});
    raised_.notify_all();
}

std::vector<RaisedAlert> FakeService::Alerts() const {
    const std::lock_guard hold(lock_);
    return alerts_;
}

bool FakeService::WaitForAlert(const RaisedAlert& alert) const {
    std::unique_lock hold(lock_);
    return raised_.wait_for(hold, kLimit, [&] {
        return std::find(alerts_.begin(), alerts_.end(), alert) != alerts_.end();
    });
}

}  // namespace oam::sim

using oam::kit::boundedNumber;
using oam::sim::FakeService;

static std::string qualified(const char* keyword, const char* qualifier) {
    return std::string(keyword) + "?" + qualifier;
}

oam_result _oamDbOpenObject(const char* name, unsigned long* handle, unsigned int mode) noexcept {
    return FakeService::Current().OpenDb(name, mode, handle);
}
oam_result _oamDbCloseObject(unsigned long handle) noexcept {
    FakeService::Current().Close(handle);
    return OAM_SUCCESS;
}
oam_result _oamDbGetProviderMode(unsigned long handle, bool* provider) noexcept {
    *provider = *FakeService::Current().Provider(handle);
    return OAM_SUCCESS;
}
oam_result _oamDbSetProviderMode(unsigned long handle, bool provider) noexcept {
    *FakeService::Current().Provider(handle) = provider;
    return OAM_SUCCESS;
}
oam_result _oamDbSetKeyword(unsigned long handle, const char* name, const char* value) noexcept {
    return FakeService::Current().SetEntry(handle, name, value, false);
}
oam_result _oamDbGetKeyword(unsigned long handle, const char* name, char* buffer,
                            unsigned int size) noexcept {
    return FakeService::Current().GetEntry(handle, name, buffer, size);
}
oam_result _oamDbRemoveKeyword(unsigned long handle, const char* name) noexcept {
    return FakeService::Current().RemoveEntry(handle, name);
}
oam_result _oamDbSetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                              const char* value) noexcept {
    return FakeService::Current().SetEntry(handle, qualified(keyword, qualifier), value, true);
}
oam_result _oamDbRemoveQualifier(unsigned long handle, const char* keyword,
                                 const char* qualifier) noexcept {
    return FakeService::Current().RemoveEntry(handle, qualified(keyword, qualifier));
}
oam_result _oamDbGetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                              char* buffer, unsigned int size) noexcept {
    return FakeService::Current().GetEntry(handle, qualified(keyword, qualifier), buffer, size);
}
oam_result _oamDbEnumObjects(int index, char* buffer, unsigned int size) noexcept {
    return FakeService::Current().NameAt(index, buffer, size);
}
oam_result _oamBoardGetBusSlot(const char* name, unsigned int* bus, unsigned int* slot) noexcept {
    for (const auto& [entry, number] :
         {std::pair("Location.PCI.Bus", bus), std::pair("Location.PCI.Slot", slot)}) {
        std::string text;
        if (auto failed = FakeService::Current().BoardValue(name, entry, &text)) return failed;
        *number = static_cast<unsigned int>(boundedNumber(text, 0, 255).value_or(0));
    }
    return OAM_SUCCESS;
}
oam_result _oamBoardGetProduct(const char* name, char* buffer, unsigned int size) noexcept {
    std::string product;
    if (auto failed = FakeService::Current().BoardValue(name, "Product", &product)) return failed;
    return oam::sim::answer(product, buffer, size);
}
oam_result _oamBoardLookupByBusSlot(unsigned int bus, unsigned int slot, char* buffer,
                                    unsigned int size) noexcept {
    return FakeService::Current().BoardAt(bus, slot, buffer, size);
}
oam_result _oamAlertNotify(const oam_msg_tag* message) noexcept {
    FakeService::Current().Raise(message);
    return OAM_SUCCESS;
}
