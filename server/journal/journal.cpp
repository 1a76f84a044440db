#include "journal/journal.h"

#include <limits.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "failure.h"
#include "foreign_text.h"
#include "journal/journal_queue.h"
#include "oam/message.h"

namespace oam::server {
namespace {

// systemd names the stream that it connected to standard error; whoever redirected it since wants
// the lines there.
bool isConnectedToJournal() {
    const char* const named = std::getenv("JOURNAL_STREAM");
    unsigned long long device = 0, inode = 0;
    struct stat facts {};
    return named != nullptr && std::sscanf(named, "%llu:%llu", &device, &inode) == 2 &&
           fstat(STDERR_FILENO, &facts) == 0 && facts.st_dev == device && facts.st_ino == inode;
}

Priority priorityOf(unsigned severity) {
    switch (severity) {
        case OAM_INFORMATION:
            return Priority::kInfo;
        case OAM_WARNING:
            return Priority::kWarning;
        default:
            return Priority::kError;
    }
}

// Bursts of alerts find room; nobody waits for what is more.
constexpr std::size_t kLinesThatWait = 10000;

constexpr std::size_t kLongestObject = 256;

// In the order of OperationKind.
constexpr const char* kVerbs[] = {"StartBoard", "StopBoard", "TestBoard"};

// "3-4 (StartBoard of "Board 3")"
std::string textOf(const OperationRecord& operation) {
    return operation.id + " (" + kVerbs[static_cast<std::size_t>(operation.kind)] + " of " +
           Quoted(operation.board) + ')';
}

void sendToJournal(const std::vector<std::string>& fields) {
    std::vector<iovec> parts;
    for (const std::string& field : fields)
        parts.push_back({const_cast<char*>(field.data()), field.size()});
    (void)sd_journal_sendv(parts.data(), static_cast<int>(parts.size()));
}

}  // namespace

Journal::Journal() {
    if (!isConnectedToJournal()) return;
    const auto queue = std::make_shared<JournalQueue>(&sendToJournal, kLinesThatWait);
    send_ = [queue](const std::vector<std::string>& fields) { queue->Put(fields); };
}

void Journal::Say(Priority priority, const std::string& message,
                  std::initializer_list<Field> fields) noexcept try {
    if (!send_) {
        if (priority != Priority::kInfo) SayToStandardError(message);
        return;
    }
    std::vector<std::string> lines = {
        "MESSAGE=" + message,
        "PRIORITY=" + std::to_string(static_cast<int>(priority)),
        "SYSLOG_IDENTIFIER=oamd",
    };
    for (const auto& [name, value] : fields)
        if (!value.empty()) lines.push_back(std::string(name) + '=' + value);
    send_(lines);
} catch (const std::exception&) {
    // No memory for a line: what it told is lost, and nothing else.
}

void Journal::SayToStandardError(const std::string& message) {
    const std::lock_guard hold(mutex_);
    std::string text = "oamd: " + message + '\n';
    if (leftOut_ != 0) text = "oamd: " + std::to_string(leftOut_) + " lines were left out\n" + text;
    // A pipe that is ready has room for so much at least.
    text.resize(std::min<std::size_t>(text.size(), PIPE_BUF));
    text.back() = '\n';
    pollfd ready = {STDERR_FILENO, POLLOUT, 0};
    if (poll(&ready, 1, 0) == 1 && write(STDERR_FILENO, text.data(), text.size()) >= 0)
        leftOut_ = 0;
    else
        ++leftOut_;
}

void Journal::Alert(const StoredAlert& alert, const std::string& user) noexcept try {
    std::string text = alert.text;
    text.erase(text.find_last_not_of(" \n") + 1);
    Say(priorityOf(alert.severity), Quoted(alert.source) + ": " + Shown(text),
        {{"OAM_BOARD", alert.source},
         {"OAM_CODE", HexText(alert.code)},
         {"OAM_SEVERITY", std::to_string(alert.severity)},
         {"OAM_SEQ", std::to_string(alert.sequence)},
         {"OAM_OP", alert.operation},
         {"OAM_USER", user}});
} catch (const std::exception&) {
}

void Journal::Operation(const OperationRecord& operation) noexcept try {
    std::string message = operation.user + " asked for operation " + textOf(operation);
    if (operation.state == OperationState::kRefused)
        message += ", refused: " + Shown(operation.text);
    Say(Priority::kInfo, message,
        {{"OAM_USER", operation.user},
         {"OAM_OP", operation.id},
         {"OAM_VERB", kVerbs[static_cast<std::size_t>(operation.kind)]},
         {"OAM_BOARD", operation.board},
         {"OAM_CODE", operation.code != 0 ? HexText(operation.code) : std::string()}});
} catch (const std::exception&) {
}

void Journal::Deed(const std::string& user, const std::string& verb, const std::string& object,
                   std::uint64_t generation) noexcept try {
    const std::string number = generation != 0 ? std::to_string(generation) : std::string();
    Say(Priority::kInfo,
        user + ": " + verb + (object.empty() ? "" : " of " + Quoted(object)) +
            (number.empty() ? "" : ", generation " + number),
        {{"OAM_USER", user},
         {"OAM_VERB", verb},
         {"OAM_OBJECT", object},
         {"OAM_GENERATION", number}});
} catch (const std::exception&) {
}

void Journal::Denied(const std::string& user, const std::string& role, const std::string& verb,
                     const std::string& whole) noexcept try {
    const std::string object = whole.substr(0, kLongestObject);
    Say(Priority::kWarning,
        "denied: " + user + " (" + role + ") may not " + verb +
            (object.empty() ? "" : " of " + Quoted(object)),
        {{"OAM_USER", user}, {"OAM_ROLE", role}, {"OAM_VERB", verb}, {"OAM_OBJECT", object}});
} catch (const std::exception&) {
}

}  // namespace oam::server
