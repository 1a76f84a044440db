#include "plugins/recorder/call.h"

#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "oam/codes.h"

namespace oam::test {

namespace {

RecorderBlock* recorderBlock() {
    const char* address = std::getenv(kRecorderVariable);
    if (address == nullptr) return nullptr;
    return reinterpret_cast<RecorderBlock*>(
        static_cast<uintptr_t>(std::strtoull(address, nullptr, 16)));
}

// Several copies of this file are loaded beside each other, so each asks the loader for its own.
std::string ownFileName() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&recorderBlock), &info) == 0) return "?";
    const char* slash = std::strrchr(info.dli_fname, '/');
    return slash == nullptr ? info.dli_fname : slash + 1;
}

// The index of "<base>[<index>]<rest>", with the rest.
bool parseElement(const std::string& keyword, const std::string& base, size_t* index,
                  std::string* rest) {
    if (keyword.compare(0, base.size() + 1, base + "[") != 0) return false;
    const size_t close = keyword.find(']');
    if (close == std::string::npos) return false;
    *index = std::strtoul(keyword.c_str() + base.size() + 1, nullptr, 10);
    *rest = keyword.substr(close + 1);
    return true;
}

}  // namespace

CalledScript Called(const char* entry, std::vector<std::string> arguments, CallDetails details) {
    RecorderBlock* block = recorderBlock();
    if (block == nullptr) return {};
    const RecordedCall call{ownFileName(),        entry,
                            std::move(arguments), details.handle,
                            details.nullBuffer,   std::this_thread::get_id()};
    block->record(call);
    CalledScript script{block->script(call.file), {}};
    if (script.first) script.answer = script.first(call);
    return script;
}

unsigned AnswerText(const std::string& text, char* buffer, unsigned size) {
    if (buffer == nullptr) return OAM_SUCCESS;
    if (text.size() >= size) return OAMERR_NOT_ENOUGH_MEMORY;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return OAM_SUCCESS;
}

std::optional<std::string> ListedKeyword(const ModuleScript& script, const std::string& keyword) {
    if (keyword == "Products.Count" && !script.products.empty()) {
        return std::to_string(script.products.size());
    }
    if (keyword == "DetectedBoards.Count" && !script.detected.empty()) {
        return std::to_string(script.detected.size());
    }
    size_t index = 0;
    std::string rest;
    if (parseElement(keyword, "Products", &index, &rest) && index < script.products.size()) {
        return script.products[index];
    }
    if (parseElement(keyword, "DetectedBoards", &index, &rest) && index < script.detected.size()) {
        const DetectedBoard& board = script.detected[index];
        if (rest == ".Name") return board.name;
        if (rest == ".Product") return board.product;
        if (rest == ".Location.PCI.Bus") return board.bus;
        if (rest == ".Location.PCI.Slot") return board.slot;
    }
    return std::nullopt;
}

}  // namespace oam::test
