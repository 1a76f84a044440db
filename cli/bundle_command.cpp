// What somebody who is to help needs to know about this host, in one archive.
//
// Each part is asked for by itself and with a limit of time, so that a service that hangs, or a
// file that cannot be read, costs that part alone. It is then named in not-collected.txt, with the
// reason. The service is never started for it.
#include "bundle_command.h"

#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>

#include "arguments.h"
#include "command.h"
#include "config_scan.h"
#include "console.h"
#include "file_content.h"
#include "foreign_text.h"
#include "installation.h"
#include "program_run.h"
#include "secret_values.h"
#include "time_text.h"

namespace oam {
namespace {

namespace fs = std::filesystem;

constexpr auto kLimit = std::chrono::seconds(15);
constexpr std::uint64_t kAlerts = 1000;

// A directory of its own beside the archive, removed with this.
class WorkDirectory {
  public:
    explicit WorkDirectory(const fs::path& beside) {
        std::string name = (beside / ".oam-bundle-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw Failure(
                "cannot write in " + Quoted(beside.string()) + ": " + std::strerror(errno),
                "name a FILE where you may write");
        path_ = name;
    }
    ~WorkDirectory() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;

    const fs::path& Path() const { return path_; }

  private:
    fs::path path_;
};

std::string hostName() {
    utsname names{};
    return uname(&names) == 0 ? names.nodename : "host";
}

// "oam-bundle-host7-20310117-093000"
std::string titleNow() {
    std::string title = "oam-bundle-" + hostName() + '-';
    for (const char c : TimeText(std::chrono::system_clock::now()).substr(0, 19))
        if (c != '-' && c != ':') title += c == 'T' ? '-' : c;
    return title;
}

class Collection {
  public:
    Collection(const Installation& place, fs::path directory)
        : place_(place), directory_(std::move(directory)) {
        fs::create_directories(directory_);
    }

    void Write(const std::string& name, const std::string& content) {
        const fs::path path = directory_ / name;
        fs::create_directories(path.parent_path());
        std::ofstream file(path, std::ios::binary);
        file << content;
        file.close();
        if (!file) throw Failure("cannot write " + Quoted(path.string()));
        collected_.push_back(name);
    }

    void Miss(const std::string& name, const std::string& why) {
        missing_.push_back(name + ": " + why);
    }

    // What the tool itself answers; `isFinding` is a status that is an answer, too.
    bool Ask(const std::string& name, std::vector<std::string> words, int isFinding = 0) {
        words.insert(words.begin(), {OwnPath(), "--json", "--dir", place_.Directory()});
        const fs::path answer = directory_ / name;
        const fs::path errors = directory_ / "errors";
        const ProgramRun run = RunProgram(words, answer, errors, kLimit);
        std::string told = LoadFile(errors).content;
        fs::remove(errors);
        const bool isAnswer = run.status == 0 || (run.status == isFinding && !run.isLate);
        if (isAnswer) {
            collected_.push_back(name);
        } else {
            fs::remove(answer);
            told.erase(told.find_last_not_of(" \n") + 1);
            Miss(name, run.isLate ? "no answer in time" : told.substr(0, told.find('\n')));
        }
        return isAnswer;
    }

    std::string Read(const std::string& name) const { return LoadFile(directory_ / name).content; }

    // One file of the installation.
    void Copy(const std::string& name, const std::string& path, bool mayHoldSecrets) {
        const FileContent file = LoadFile(path);
        if (file.error.empty())
            Write(name, mayHoldSecrets ? WithoutSecrets(file.content) : file.content);
        else if (file.code != ENOENT)
            Miss(name, file.error);
    }

    void Finish() {
        std::string text;
        for (const std::string& line : missing_) text += line + '\n';
        Write("not-collected.txt", text.empty() ? "everything was collected\n" : text);
    }

    const std::vector<std::string>& Collected() const { return collected_; }
    const std::vector<std::string>& Missing() const { return missing_; }

  private:
    const Installation& place_;
    const fs::path directory_;
    std::vector<std::string> collected_;
    std::vector<std::string> missing_;
};

void collectFiles(const Installation& place, Collection& parts) {
    for (const char* name : {"startup.log", "startup.bak", "oammon.log", "oam.rpt"})
        parts.Copy(std::string("log/") + name, place.Path(std::string(kLogDirectory) + '/' + name),
                   false);
    for (const char* extension : {".xmo", ".bak"}) try {
            for (const std::string& name : FilesOf(place.Path(kConfigDirectory), extension))
                parts.Copy("cfg/" + name, place.Path(std::string(kConfigDirectory) + '/' + name),
                           true);
        } catch (const Failure& failure) {
            parts.Miss("cfg/*" + std::string(extension), failure.what());
        }
    std::string listed;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(place.Path(kPluginDirectory), error)) {
        struct stat facts {};
        if (stat(entry.path().c_str(), &facts) != 0) continue;
        listed += Shown(entry.path().filename().string()) + "  " + std::to_string(facts.st_size) +
                  " bytes  " + TimeText(std::chrono::system_clock::from_time_t(facts.st_mtime)) +
                  '\n';
    }
    if (error)
        parts.Miss("lib.txt", error.message());
    else
        parts.Write("lib.txt", listed);
}

void collectFromDaemon(Collection& parts) {
    constexpr const char* kFromDaemon[] = {"doctor.json", "objects.json", "boards.json",
                                           "plugins.json", "alerts.json"};
    if (!parts.Ask("host.json", {"host"})) {
        for (const char* name : kFromDaemon) parts.Miss(name, "only a daemon is asked for it");
        return;
    }
    constexpr int kFindings = 1;
    parts.Ask("doctor.json", {"doctor"}, kFindings);
    parts.Ask("objects.json", {"objects"});
    parts.Ask("boards.json", {"board", "list"});
    parts.Ask("plugins.json", {"plugin", "list"});
    const Json host = Json::parse(parts.Read("host.json"), nullptr, false);
    const auto newest = host.is_object() ? host.value("newestAlert", std::uint64_t{0}) : 0;
    const std::uint64_t count = std::min(newest, kAlerts);
    if (count == 0) return parts.Write("alerts.json", "");
    parts.Ask("alerts.json", {"monitor", "--after", std::to_string(newest - count), "--count",
                              std::to_string(count), "--for", "5"});
}

class BundleCommand : public Command {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Optional("FILE", &file_,
                           "The archive (default: oam-bundle-HOST-TIME.tar.gz, here)");
    }

    ExitStatus Run(Context& context) override {
        const std::string title = titleNow();
        const fs::path file = fs::absolute(file_.value_or(title + ".tar.gz"));
        const WorkDirectory work(file.parent_path());
        Collection parts(context.place, work.Path() / title);
        parts.Write("about.txt", About(context.place));
        collectFiles(context.place, parts);
        collectFromDaemon(parts);
        constexpr int kFindings = 1;
        parts.Ask("check.json", {"check"}, kFindings);
        parts.Ask("shadow.json", {"shadow"});
        parts.Finish();
        Pack(work.Path(), title, file);
        Tell(context.console, file, parts);
        return kDone;
    }

  private:
    static std::string About(const Installation& place) {
        utsname names{};
        (void)uname(&names);
        return "collected " + TimeText(std::chrono::system_clock::now()) + "\ninstallation " +
               Shown(place.Directory()) + "\nhost " + names.nodename + "\nsystem " + names.sysname +
               ' ' + names.release + ' ' + names.version + ' ' + names.machine +
               "\nValues of keywords that look like passwords or keys are replaced.\n";
    }

    static void Pack(const fs::path& work, const std::string& title, const fs::path& file) {
        const fs::path archive = work / "archive";
        const fs::path errors = work / "errors";
        const ProgramRun run = RunProgram({"tar", "-C", work, "-czf", archive, title},
                                          work / "told", errors, std::chrono::minutes(5));
        if (run.status != 0)
            throw Failure("tar cannot make the archive: " + Shown(LoadFile(errors).content));
        chmod(archive.c_str(), 0600);
        std::error_code error;
        fs::rename(archive, file, error);
        if (error) throw Failure("cannot write " + Quoted(file.string()) + ": " + error.message());
    }

    static void Tell(Console& console, const fs::path& file, const Collection& parts) {
        if (console.IsJson())
            return console.ShowJson({{"file", file.string()},
                                     {"collected", parts.Collected()},
                                     {"notCollected", parts.Missing()}});
        for (const std::string& line : parts.Missing())
            console.Note("not collected: " + Shown(line));
        console.Say("wrote " + Quoted(file.string()) + ", " +
                    std::to_string(parts.Collected().size()) + " files");
    }

    std::optional<std::string> file_;
};

constexpr CommandRow kRows[] = {
    {nullptr, "bundle", "Collect what helps to find a fault, without secrets, in one archive",
     "oam bundle\noam bundle host7.tar.gz", Make<BundleCommand>},
};

}  // namespace

std::span<const CommandRow> BundleCommands() { return kRows; }

}  // namespace oam
