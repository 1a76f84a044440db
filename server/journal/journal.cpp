#include "journal/journal.h"

#include <sys/stat.h>
#include <sys/uio.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "failure.h"
#include "foreign_text.h"
#include "oam/message.h"
#include "transport/calls.h"

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

}  // namespace

Journal::Journal() : isJournal_(isConnectedToJournal()) {}

void Journal::Say(Priority priority, const std::string& message,
                  std::initializer_list<Field> fields) noexcept try {
    if (!isJournal_) {
        std::string line = "oamd: " + message + '\n';
        (void)!write(STDERR_FILENO, line.data(), line.size());
        return;
    }
    std::vector<std::string> lines = {
        "MESSAGE=" + message,
        "PRIORITY=" + std::to_string(static_cast<int>(priority)),
        "SYSLOG_IDENTIFIER=oamd",
    };
    for (const auto& [name, value] : fields)
        if (!value.empty()) lines.push_back(std::string(name) + '=' + value);
    std::vector<iovec> parts;
    for (std::string& line : lines) parts.push_back({line.data(), line.size()});
    (void)sd_journal_sendv(parts.data(), static_cast<int>(parts.size()));
} catch (const std::exception&) {
    // No memory for a line: what it told is lost, and nothing else.
}

void Journal::Alert(const StoredAlert& alert) noexcept try {
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

void Journal::Denied(const Call& call, const Verb& verb, const std::string& object) noexcept try {
    Say(Priority::kWarning,
        "denied: " + call.user + " (" + RoleName(call.role) + ") may not " + verb.name +
            (object.empty() ? "" : " of " + Quoted(object)),
        {{"OAM_USER", call.user},
         {"OAM_ROLE", RoleName(call.role)},
         {"OAM_VERB", verb.name},
         {"OAM_OBJECT", object}});
} catch (const std::exception&) {
}

}  // namespace oam::server
