#include "library/code_names.h"

#include <chrono>
#include <condition_variable>
#include <optional>

#include "foreign_text.h"
#include "library/own_codes.h"
#include "oam/entry.h"

namespace oam::server {
namespace {

constexpr auto kMoment = std::chrono::milliseconds(200);
// A plug-in that makes up codes must not fill the memory.
constexpr std::size_t kMost = 10000;

}  // namespace

// Shared with the tasks, which may outlast a Forget.
struct CodeNames::Names {
    std::mutex mutex;
    std::condition_variable news;
    std::map<std::uint32_t, std::optional<std::string>> known;  // nothing: asked, not answered
};

std::string CodeNames::Of(std::uint32_t code) {
    if (const char* name = OwnCodeName(code)) return name;
    std::shared_ptr<Names> names;
    {
        const std::lock_guard hold(mutex_);
        if (!names_) names_ = std::make_shared<Names>();
        names = names_;
    }
    std::unique_lock hold(names->mutex);
    if (const auto found = names->known.find(code); found != names->known.end())
        return found->second.value_or("");
    if (names->known.size() >= kMost) return "";
    names->known[code] = std::nullopt;
    hold.unlock();
    const auto refusal = lanes_.Post("GetCodeName", "", [names, code] {
        const char* const name = _oamGetText(code);
        const std::lock_guard holdNames(names->mutex);
        names->known[code] = name ? Shown(name) : "";
        names->news.notify_all();
    });
    hold.lock();
    if (refusal) names->known.erase(code);
    names->news.wait_for(hold, kMoment, [&] {
        const auto found = names->known.find(code);
        return found == names->known.end() || found->second.has_value();
    });
    const auto found = names->known.find(code);
    return found == names->known.end() ? "" : found->second.value_or("");
}

void CodeNames::Forget() {
    const std::lock_guard hold(mutex_);
    names_.reset();
}

}  // namespace oam::server
