#include "fleet/link/denials.h"

#include <map>
#include <mutex>
#include <utility>

namespace oam::fleet {
namespace {

constexpr std::size_t kMost = 10000;

struct Heard {
    std::mutex mutex;
    std::map<std::uintptr_t, std::vector<std::string>> texts;
    std::uintptr_t last = 0;
};

// The engine's threads may outlive every destructor.
Heard& heard() {
    static auto* const all = new Heard;
    return *all;
}

std::uintptr_t begin() {
    const std::lock_guard hold(heard().mutex);
    heard().texts[++heard().last];
    return heard().last;
}

}  // namespace

Denials::Denials() : number_(begin()) {}

Denials::~Denials() {
    const std::lock_guard hold(heard().mutex);
    heard().texts.erase(number_);
}

std::vector<std::string> Denials::Take() {
    const std::lock_guard hold(heard().mutex);
    return std::exchange(heard().texts[number_], {});
}

void Denials::Tell(std::uintptr_t number, const char* text) {
    const std::lock_guard hold(heard().mutex);
    const auto found = heard().texts.find(number);
    if (found != heard().texts.end() && found->second.size() < kMost)
        found->second.emplace_back(text);
}

}  // namespace oam::fleet
