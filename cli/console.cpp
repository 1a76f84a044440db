#include "console.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "alert_inbox.h"
#include "failure.h"
#include "foreign_text.h"
#include "table_fit.h"
#include "terminal.h"

namespace oam {
namespace {

Json withSchema(const Json& members) {
    Json object{{"schema", 1}};
    object.update(members);
    return object;
}

}  // namespace

void Console::Show(const char* key, const Table& table) {
    if (json_) return ShowJson(Json{{key, AsJson(table)}});
    if (collected_) return Write(AsText(table));
    const std::string text = AsText(Fitted(table, TerminalWidth(STDOUT_FILENO)));
    const size_t heading = text.find('\n');
    Write(Painted(text.substr(0, heading), Look::kHeading, STDOUT_FILENO) + text.substr(heading));
}

void Console::Show(const Record& record) {
    if (json_) return ShowJson(AsJson(record));
    Write(AsText(record));
}

void Console::ShowJson(const Json& members) { Write(JsonText(withSchema(members)) + '\n'); }

void Console::StreamJson(const Json& members) { Stream(JsonLine(withSchema(members))); }

void Console::Stream(const std::string& line) {
    Write(line + '\n');
    Flush();
}

void Console::Say(const std::string& line) {
    if (!json_) Write(line + '\n');
}

void Console::Value(const std::string& value) {
    Write((collected_ || isatty(STDOUT_FILENO) ? Shown(value) : value) + '\n');
}

void Console::Note(const std::string& text) {
    if (collected_) {
        collected_->err += text + '\n';
        return;
    }
    (void)std::fflush(stdout);
    std::fprintf(stderr, "oam: %s\n", text.c_str());
}

void Console::Complain(const Failure& failure) {
    if (collected_) {
        Note(failure.what());
        if (!failure.Advice().empty()) Note(failure.Advice());
        return;
    }
    (void)std::fflush(stdout);
    std::fprintf(stderr, "%s %s\n", Painted("oam:", Look::kTrouble, STDERR_FILENO).c_str(),
                 failure.what());
    if (!failure.Advice().empty()) std::fprintf(stderr, "     %s\n", failure.Advice().c_str());
}

ExitStatus Console::StatusOf(const std::function<ExitStatus()>& run) {
    try {
        return run();
    } catch (const UsageError& error) {
        Note(error.what());
        return kUsage;
    } catch (const Failure& failure) {
        Complain(failure);
        return failure.Status();
    } catch (const std::exception& error) {
        Note(error.what());
    }
    return kFailed;
}

void Console::Remark(const Alert& alert) {
    std::string text = alert.text;
    text.erase(text.find_last_not_of(" \n") + 1);
    Note(Shown(alert.source) + ": " + Shown(text));
}

void Console::Whisper(const std::string& text) {
    if (!collected_ && isatty(STDERR_FILENO)) Note(text);
}

void Console::Flush() {
    if (!collected_ && std::fflush(stdout) != 0)
        throw Failure(std::string("cannot write the output: ") + std::strerror(errno));
}

void Console::Write(const std::string& text) {
    if (collected_) {
        collected_->out += text;
        return;
    }
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        throw Failure(std::string("cannot write the output: ") + std::strerror(errno));
}

}  // namespace oam
