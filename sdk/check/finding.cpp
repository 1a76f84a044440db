#include "finding.h"

#include <unistd.h>

#include <charconv>
#include <map>
#include <mutex>
#include <set>
#include <utility>

namespace oam::check {
namespace {

constexpr char kSeparator = '\x1f';
constexpr std::size_t kMostOfOneKind = 4;
constexpr std::size_t kLongestSeen = 600;  // a line stays one write, which no other can part

struct Sender {
    std::mutex lock;
    int descriptor = -1;
    std::set<std::string> told;
    std::map<std::pair<Rule, std::string>, std::size_t> ofOneKind;
};

// Never destroyed: threads of the judged module may outlive the exit handlers.
Sender& sender() {
    static Sender& only = *new Sender;
    return only;
}

std::string oneLine(std::string_view text) {
    std::string line(text.substr(0, kLongestSeen));
    for (char& letter : line)
        if (static_cast<unsigned char>(letter) < ' ') letter = ' ';
    return line;
}

}  // namespace

void FindingSender::Open(int descriptor) { sender().descriptor = descriptor; }

bool FindingSender::HasToldAny() {
    const std::lock_guard hold(sender().lock);
    return !sender().told.empty();
}

void Tell(Rule rule, std::string_view entry, std::string_view seen) {
    const std::string line = std::to_string(static_cast<int>(rule)) + kSeparator + oneLine(entry) +
                             kSeparator + oneLine(seen) + '\n';
    Sender& channel = sender();
    const std::lock_guard hold(channel.lock);
    if (!channel.told.insert(line).second) return;
    if (++channel.ofOneKind[{rule, std::string(entry)}] > kMostOfOneKind) return;
    (void)!write(channel.descriptor, line.data(), line.size());
}

void Tell(Rule rule, Entry entry, std::string_view seen) { Tell(rule, RowOf(entry).name, seen); }

void FindingReceiver::Take(std::string_view bytes) {
    rest_ += bytes;
    for (std::size_t end; (end = rest_.find('\n')) != std::string::npos; rest_.erase(0, end + 1)) {
        const std::string_view line(rest_.data(), end);
        const auto first = line.find(kSeparator);
        const auto second = line.find(kSeparator, first + 1);
        std::size_t rule = std::size(kRules);
        std::from_chars(line.data(), line.data() + line.size(), rule);
        // The judged module shares the child, so it may have written here as well.
        if (second == std::string_view::npos || rule >= std::size(kRules)) continue;
        findings_.push_back({static_cast<Rule>(rule),
                             std::string(line.substr(first + 1, second - first - 1)),
                             std::string(line.substr(second + 1))});
    }
}

}  // namespace oam::check
