#include "doors/config_door.h"

#include "base/text.h"
#include "doors/config.h"
#include "doors/doors.h"
#include "oam/entry.h"
#include "zol/zol.h"

namespace oam::test {

bool ConfigDoor::IgnoringCase::operator()(const std::string& left, const std::string& right) const {
    return zolStricmp(left.c_str(), right.c_str()) < 0;
}

ConfigDoor& ConfigDoor::The() {
    static ConfigDoor& door = *new ConfigDoor;
    return door;
}

void ConfigDoor::Reset() {
    const std::lock_guard hold(mutex_);
    objects_.clear();
    open_.clear();
    lastHandle_ = 0;
}

void ConfigDoor::AddObject(const std::string& name, const Entries& entries) {
    const std::lock_guard hold(mutex_);
    objects_[name] = entries;
    objects_[name].emplace("Name", name);
}

std::optional<std::string> ConfigDoor::Stored(const std::string& object,
                                              const std::string& entry) const {
    const std::lock_guard hold(mutex_);
    const auto found = objects_.find(object);
    if (found == objects_.end() || !found->second.contains(entry)) return std::nullopt;
    return found->second.at(entry);
}

unsigned long ConfigDoor::Open(const std::string& object) {
    const std::lock_guard hold(mutex_);
    open_[++lastHandle_] = object;
    return lastHandle_;
}

size_t ConfigDoor::StillOpen() const {
    const std::lock_guard hold(mutex_);
    return open_.size();
}

std::optional<std::string> ConfigDoor::Get(unsigned long handle, const std::string& entry) const {
    std::string object;
    {
        const std::lock_guard hold(mutex_);
        const auto found = open_.find(handle);
        if (found == open_.end()) return std::nullopt;
        object = found->second;
    }
    return Stored(object, entry);
}

void ConfigDoor::Set(unsigned long handle, const std::string& entry, const std::string& value) {
    const std::lock_guard hold(mutex_);
    const auto found = open_.find(handle);
    if (found != open_.end()) objects_[found->second][entry] = value;
}

bool ConfigDoor::Has(const std::string& object) const {
    const std::lock_guard hold(mutex_);
    return objects_.contains(object);
}

void ConfigDoor::Close(unsigned long handle) {
    const std::lock_guard hold(mutex_);
    open_.erase(handle);
}

std::optional<std::string> ConfigDoor::NameAt(int index) const {
    const std::lock_guard hold(mutex_);
    for (const auto& [name, entries] : objects_) {
        if (index-- == 0) return name;
    }
    return std::nullopt;
}

namespace {

oam_result open(oam_result scripted, const char* name, unsigned long* handle) {
    if (scripted != OAM_SUCCESS) return scripted;
    if (!ConfigDoor::The().Has(name)) return OAMERR_NOT_FOUND;
    *handle = ConfigDoor::The().Open(name);
    return OAM_SUCCESS;
}

oam_result close(oam_result scripted, unsigned long handle) {
    ConfigDoor::The().Close(handle);
    return scripted;
}

oam_result set(oam_result scripted, unsigned long handle, const std::string& entry,
               const char* value) {
    if (scripted == OAM_SUCCESS) ConfigDoor::The().Set(handle, entry, value);
    return scripted;
}

oam_result get(oam_result scripted, unsigned long handle, const char* entry, char* buffer,
               unsigned size) {
    if (scripted != OAM_SUCCESS) return scripted;
    const auto stored = ConfigDoor::The().Get(handle, entry);
    return stored ? CopyText(stored->c_str(), buffer, size) : OAMERR_NOT_FOUND;
}

Doors& doors() { return Doors::The(); }

}  // namespace
}  // namespace oam::test

using namespace oam::test;

oam_result ConfigInit() noexcept { return doors().Call("ConfigInit"); }
void ConfigExit() noexcept { (void)doors().Call("ConfigExit"); }

oam_result CreateObject(const char* name, const char* product) noexcept {
    const oam_result result = doors().Call("CreateObject", name, product);
    if (result == OAM_SUCCESS) ConfigDoor::The().AddObject(name);
    return result;
}

oam_result OpenObject(unsigned long client, const char* name, unsigned long* handle,
                      unsigned mode) noexcept {
    return open(doors().Call("OpenObject", client, name, mode), name, handle);
}

oam_result CloseObject(unsigned long handle) noexcept {
    return close(doors().Call("CloseObject", handle), handle);
}

oam_result SetKeyword(unsigned long handle, const char* name, const char* value) noexcept {
    return set(doors().Call("SetKeyword", handle, name, value), handle, name, value);
}

oam_result GetKeyword(unsigned long handle, const char* name, char* buffer,
                      unsigned size) noexcept {
    return get(doors().Call("GetKeyword", handle, name), handle, name, buffer, size);
}

oam_result _oamOpenObject(unsigned long client, const char* name, unsigned long* handle,
                          unsigned mode) noexcept {
    return open(doors().Call("_oamOpenObject", client, name, mode), name, handle);
}

oam_result _oamCloseObject_WOAN(unsigned long handle) noexcept {
    return close(doors().Call("_oamCloseObject_WOAN", handle), handle);
}

oam_result _oamSetKeyword(unsigned long handle, const char* name, const char* value) noexcept {
    return set(doors().Call("_oamSetKeyword", handle, name, value), handle, name, value);
}

oam_result DbOpenObjectAsFound(const char* name, unsigned long* handle) noexcept {
    return open(doors().Call("DbOpenObjectAsFound", name), name, handle);
}

oam_result _oamDbOpenObject(const char* name, unsigned long* handle, unsigned mode) noexcept {
    return open(doors().Call("_oamDbOpenObject", name, mode), name, handle);
}

oam_result _oamDbCloseObject(unsigned long handle) noexcept {
    return close(doors().Call("_oamDbCloseObject", handle), handle);
}

oam_result _oamDbSetKeyword(unsigned long handle, const char* name, const char* value) noexcept {
    return set(doors().Call("_oamDbSetKeyword", handle, name, value), handle, name, value);
}

oam_result _oamDbGetKeyword(unsigned long handle, const char* name, char* buffer,
                            unsigned size) noexcept {
    return get(doors().Call("_oamDbGetKeyword", handle, name), handle, name, buffer, size);
}

oam_result _oamDbSetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                              const char* value) noexcept {
    return set(doors().Call("_oamDbSetQualifier", handle, keyword, qualifier, value), handle,
               std::string(keyword) + "?" + qualifier, value);
}

oam_result _oamDbEnumObjects(int index, char* buffer, unsigned size) noexcept {
    const oam_result scripted = doors().Call("_oamDbEnumObjects", index);
    if (scripted != OAM_SUCCESS) return scripted;
    const auto name = ConfigDoor::The().NameAt(index);
    return name ? oam::CopyText(name->c_str(), buffer, size) : OAMERR_NOT_FOUND;
}
