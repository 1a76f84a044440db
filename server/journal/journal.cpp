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
#include <vector>

#include "failure.h"
#include "foreign_text.h"
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

void sendToJournal(const std::vector<std::string>& fields) {
    std::vector<iovec> parts;
    for (const std::string& field : fields)
        parts.push_back({const_cast<char*>(field.data()), field.size()});
    (void)sd_journal_sendv(parts.data(), static_cast<int>(parts.size()));
}

}  // namespace

Journal::Journal() : send_(isConnectedToJournal() ? &sendToJournal : Send()) {}

void Journal::Say(Priority priority, const std::string& message,
                  std::initializer_list<Field> fields) noexcept try {
    if (!send_) return SayToStandardError(message);
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

void Journal::Alert(const StoredAlert& alert) noexcept try {
    if (!send_ && alert.severity == OAM_INFORMATION) return;
    std::string text = alert.text;
    text.erase(text.find_last_not_of(" \n") + 1);
    Say(priorityOf(alert.severity), Quoted(alert.source) + ": " + Shown(text),
        {{"OAM_BOARD", alert.source},
         {"OAM_CODE", HexText(alert.code)},
         {"OAM_SEVERITY", std::to_string(alert.severity)},
         {"OAM_SEQ", std::to_string(alert.sequence)},
         {"OAM_OP", alert.operation}});
} catch (const std::exception&) {
}

void Journal::Denied(const std::string& user, const std::string& role, const std::string& verb,
                     const std::string& object) noexcept try {
    Say(Priority::kWarning,
        "denied: " + user + " (" + role + ") may not " + verb +
            (object.empty() ? "" : " of " + Quoted(object)),
        {{"OAM_USER", user}, {"OAM_ROLE", role}, {"OAM_VERB", verb}, {"OAM_OBJECT", object}});
} catch (const std::exception&) {
}

}  // namespace oam::server
