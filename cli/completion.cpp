#include "completion.h"

#include <sys/time.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>

#include "fleet_program.h"
#include "foreign_text.h"
#include "live_names.h"
#include "oam/codes.h"
#include "object_kind.h"
#include "shell_words.h"

namespace oam {
namespace {

using Names = std::vector<std::string>;

// Nobody waits longer for a key.
constexpr int kPatience = 150'000;

void endSilently(int) { _exit(0); }

void limitTime() {
    std::signal(SIGALRM, endSilently);
    itimerval limit{};
    limit.it_value.tv_usec = kPatience;
    setitimer(ITIMER_REAL, &limit, nullptr);
}

bool beginsWith(const std::string& name, const std::string& begin) {
    const NameLess less;
    const std::string head = name.substr(0, begin.size());
    return !less(head, begin) && !less(begin, head);
}

// The command line read so far: which command, and what is missing.
class Reading {
  public:
    Reading(CLI::App& app, const ShellWords& words) : app_(&app) {
        for (size_t i = 1; i < words.before.size(); ++i) Take(words.before[i]);
    }

    // The option whose value the last word is, or null.
    const CLI::Option* Pending() const { return missing_ > 0 ? pending_ : nullptr; }
    bool MayBeOption() const { return !isBehindDashes_; }
    const Names& Positionals() const { return positionals_; }
    const std::string& Directory() const { return directory_; }
    std::string Command() const { return app_->get_name(); }
    bool IsOfBoards() const {
        return app_->get_parent() && app_->get_parent()->get_name() == "board";
    }

    Names Commands() const {
        Names names;
        if (!positionals_.empty()) return names;
        for (const CLI::App* app : app_->get_subcommands({})) names.push_back(app->get_name());
        return names;
    }

    Names Options() const {
        Names names;
        for (const CLI::App* app = app_; app; app = app->get_parent())
            for (const CLI::Option* option : app->get_options())
                for (const std::string& name : option->get_lnames())
                    if (std::find(names.begin(), names.end(), "--" + name) == names.end())
                        names.push_back("--" + name);
        return names;
    }

    // The name of the positional argument that the last word is; empty: none is expected.
    std::string Positional() const {
        size_t left = positionals_.size();
        for (const CLI::Option* option : app_->get_options()) {
            if (!option->get_positional()) continue;
            const auto most = static_cast<size_t>(option->get_items_expected_max());
            if (left < most) return option->get_name(true);
            left -= most;
        }
        return {};
    }

  private:
    void Take(const std::string& word) {
        if (missing_ > 0) {
            --missing_;
            if (pending_->check_lname("dir")) directory_ = word;
        } else if (!isBehindDashes_ && word == "--") {
            isBehindDashes_ = true;
        } else if (!isBehindDashes_ && word.starts_with("--")) {
            TakeOption(word);
        } else if (CLI::App* command = CommandNamed(word)) {
            app_ = command;
        } else {
            positionals_.push_back(word);
        }
    }

    CLI::App* CommandNamed(const std::string& word) const {
        for (CLI::App* app : app_->get_subcommands({}))
            if (app->get_name() == word) return app;
        return nullptr;
    }

    void TakeOption(const std::string& word) {
        const size_t equal = word.find('=');
        const std::string name = word.substr(2, equal == word.npos ? equal : equal - 2);
        for (const CLI::App* app = app_; app; app = app->get_parent())
            for (const CLI::Option* option : app->get_options()) {
                if (!option->check_lname(name)) continue;
                pending_ = option;
                missing_ = equal == word.npos ? option->get_items_expected_min() : 0;
                if (equal != word.npos && name == "dir") directory_ = word.substr(equal + 1);
                return;
            }
    }

    CLI::App* app_;
    const CLI::Option* pending_ = nullptr;
    int missing_ = 0;
    bool isBehindDashes_ = false;
    Names positionals_;
    std::string directory_;
};

Names codeNames() {
    return {
#define OAM_CODE(name, value) #name,
#include "oam/codes.def"
#undef OAM_CODE
    };
}

// KEYWORD= or, behind it, what it can be.
Names assignments(LiveNames& live, const std::string& object, bool isSupervisor,
                  const std::string& word) {
    const size_t equal = word.find('=');
    if (equal == word.npos) {
        Names keywords = isSupervisor ? Names{"AutoStartEnabled", "AutoStopEnabled",
                                              "SynchronizeEnabled", "OammonLog"}
                                      : live.Keywords(object);
        for (std::string& keyword : keywords) keyword += '=';
        return keywords;
    }
    const std::string keyword = word.substr(0, equal);
    Names values = isSupervisor ? Names{"Yes", "No"} : live.Choices(object, keyword);
    for (std::string& value : values) value = keyword + '=' + value;
    return values;
}

bool isFile(const std::string& what) {
    constexpr std::string_view kFiles[] = {"FILE",          "--file",          "--dir",
                                           "--certificate", "--key",           "--authorities",
                                           "--credentials", "--password-file", "--config"};
    return std::find(std::begin(kFiles), std::end(kFiles), what) != std::end(kFiles);
}

// What an argument or option of this name can be.
Names valuesOf(const std::string& what, const Reading& reading, LiveNames& live,
               const std::string& word) {
    if (what == "OBJECT" || what == "--object") return live.Objects();
    if (what == "PRODUCT" || what == "--product") return live.Products();
    if (what == "CODE") return codeNames();
    if (what == "KEYWORD") return live.Keywords(reading.Positionals().at(0));
    if (what == "KEYWORD=VALUE") {
        const bool isSupervisor = reading.Command() == "supervisor";
        return assignments(live, isSupervisor ? "" : reading.Positionals().at(0), isSupervisor,
                           word);
    }
    // What can be added is not there yet.
    if (what == "NAME" && reading.IsOfBoards() && reading.Command() != "add") return live.Boards();
    return {};
}

void print(const ShellWords& words, const Names& names) {
    Names fitting;
    for (const std::string& name : names)
        if (beginsWith(name, words.last) &&
            std::none_of(name.begin(), name.end(), [](char c) { return IsControl(c); }))
            fitting.push_back(name);
    std::sort(fitting.begin(), fitting.end());
    const bool isOpen = !fitting.empty() &&
                        std::all_of(fitting.begin(), fitting.end(),
                                    [](const std::string& name) { return name.ends_with('='); });
    std::puts(isOpen ? "nospace" : "words");
    const size_t kept = words.quote == 0 ? words.kept : 0;
    for (const std::string& name : fitting)
        std::puts(ShellQuoted(name.substr(kept), words.quote).c_str());
}

// What the last word is an argument of; nothing when commands or options have been printed instead.
std::optional<std::string> argumentAt(const ShellWords& words, const Reading& reading) {
    const CLI::Option* const pending = reading.Pending();
    if (!pending && reading.MayBeOption() && words.last.starts_with("-")) {
        print(words, reading.Options());
        return std::nullopt;
    }
    const std::string what = pending ? "--" + pending->get_lnames().at(0) : reading.Positional();
    if (!pending && what.empty()) {
        print(words, reading.Commands());
        return std::nullopt;
    }
    if (!isFile(what)) return what;
    std::puts("files");
    return std::nullopt;
}

}  // namespace

void PrintFleetCompletion(CLI::App& app, const std::string& line) {
    ShellWords words = ReadShellWords(line);
    const auto fleet = std::find(words.before.begin(), words.before.end(), kFleetWord);
    if (fleet != words.before.end()) words.before.erase(fleet);
    if (argumentAt(words, Reading(app, words))) print(words, {});
}

void PrintCompletion(CLI::App& app, const std::string& line) {
    limitTime();
    const ShellWords words = ReadShellWords(line);
    const Reading reading(app, words);
    const auto what = argumentAt(words, reading);
    if (!what) return;
    const Installation place = Installation::Locate(
        reading.Directory().empty() ? std::nullopt : std::optional(reading.Directory()));
    LiveNames live(place);
    print(words, valuesOf(*what, reading, live, words.last));
    (void)std::fflush(stdout);
    // A daemon that does not answer is not waited for.
    _exit(0);
}

}  // namespace oam
