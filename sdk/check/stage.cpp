// The parent's side of a run: the watchdog.
#include "stage.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "interruption.h"
#include "judged_child.h"
#include "shown.h"
#include "stages.h"
#include "temporary_installation.h"

namespace oam::check {

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

constexpr int kMostDeathsOfOneKind = 3;
constexpr Milliseconds kGlance{50};
// The service itself retries an opening for ten seconds.
constexpr Milliseconds kServiceWait{15000};

constexpr Stage kStages[] = {
    {Meaning::Condition, true, &CheckLife},
    {Meaning::Further, true, &CheckProducts},
    {Meaning::Further, true, &CheckReading},
    {Meaning::Further, true, &CheckChanging},
    {Meaning::Further, true, &CheckBadArguments},
    {Meaning::Further, false, &CheckOperations},
    {Meaning::Further, false, &CheckConcurrency},
    {Meaning::Further, false, &CheckInterruptions},
    {Meaning::Further, true, &CheckDatabaseFailures},
    {Meaning::Further, true, &CheckAlerts},
    {Meaning::Further, true, &CheckTexts},
};

class Pipe {
  public:
    Pipe() {
        if (pipe2(ends_, O_CLOEXEC) != 0) ends_[0] = ends_[1] = -1;
    }
    ~Pipe() {
        CloseWriting();
        (void)close(ends_[0]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int Writing() const { return ends_[1]; }
    void CloseWriting() {
        if (ends_[1] >= 0) (void)close(ends_[1]);
        ends_[1] = -1;
    }
    enum class Result { Bytes, Nothing, End };
    Result Read(FindingReceiver* receiver, Milliseconds wait) {
        pollfd end{ends_[0], POLLIN, 0};
        if (poll(&end, 1, static_cast<int>(wait.count())) <= 0) return Result::Nothing;
        char bytes[4096];
        const auto count = read(ends_[0], bytes, sizeof bytes);
        if (count <= 0) return Result::End;
        receiver->Take({bytes, static_cast<std::size_t>(count)});
        return Result::Bytes;
    }

  private:
    int ends_[2];
};

std::string describe(const CallRecord& call) {
    return std::string(call.subject) + (call.subject[0] != '\0' ? ": " : "");
}

// One child, from its beginning to its end.
class ChildRun {
  public:
    ChildRun(const Stage& stage, const std::filesystem::path& module, ModuleKind kind,
             Milliseconds limit, int firstStep)
        : place_(module), journal_(CallJournal::Make()), limit_(limit) {
        child_ = fork();
        if (child_ == 0) {
            BecomeJudgedChild(*journal_, place_, pipe_.Writing());
            Bench bench({place_.Module(), module.filename().string(), kind, limit}, *journal_,
                        firstStep);
            stage.run(bench);
            journal_->isFinished = true;
            _exit(EXIT_SUCCESS);
        }
        pipe_.CloseWriting();
    }

    // How the child died; nothing when it came to its end by itself, or the user stopped it.
    std::optional<Finding> Watch() {
        int status = 0;
        bool isOpen = true;
        while (waitpid(child_, &status, WNOHANG) == 0) {
            if (isOpen)
                isOpen = pipe_.Read(&receiver_, kGlance) != Pipe::Result::End;
            else
                (void)poll(nullptr, 0, static_cast<int>(kGlance.count()));
            const auto stuck = WhereStuck();
            if (!stuck && !WasInterrupted()) continue;
            End();
            return stuck;
        }
        // Not up to the end: a child of the module's may hold the other end.
        while (pipe_.Read(&receiver_, Milliseconds(0)) == Pipe::Result::Bytes) {
        }
        if (journal_->isFinished) return {};
        return HowDead(status);
    }

    const std::vector<Finding>& Findings() const { return receiver_.Findings(); }
    int Step() const { return journal_->step; }
    bool IsUsable() const { return journal_->isUsable; }

  private:
    std::optional<Finding> WhereStuck() {
        if (const CallRecord* call = journal_->Overdue(limit_)) return HowHanging(*call);
        const auto progress = journal_->progress.load();
        const auto now = Clock::now();
        if (progress != progress_) moved_ = now;
        progress_ = progress;
        if (now - moved_ < limit_ + kServiceWait) return {};
        return Finding{Rule::Returns, "", "the service does not answer any more"};
    }

    void End() const {
        (void)kill(-child_, SIGKILL);
        (void)kill(child_, SIGKILL);
        (void)waitpid(child_, nullptr, 0);
    }

    Finding HowHanging(const CallRecord& call) const {
        (void)kill(child_, SIGSTOP);
        std::string seen =
            describe(call) + "no answer within " + std::to_string(limit_.count()) + " ms";
        if (const CallRecord* inside = journal_->Latest(CallKind::Service))
            seen += std::string(", while ") + inside->subject + " waits in " + inside->name;
        return {Rule::Returns, call.name, seen};
    }

    Finding HowDead(int status) const {
        const DeathRecord& death = journal_->death;
        const CallRecord* call =
            death.kind != DeathRecord::Kind::None ? death.call : journal_->Latest(CallKind::Entry);
        const std::string entry = call != nullptr ? call->name : "own thread";
        const std::string where = call != nullptr ? describe(*call) : "";
        const int signal = death.kind == DeathRecord::Kind::Signal ? death.signal
                           : WIFSIGNALED(status)                   ? WTERMSIG(status)
                                                                   : 0;
        if (signal == 0) return {Rule::EndsProcess, entry, where + "it ended the process"};
        std::string seen = where + strsignal(signal);
        if (death.address != nullptr || signal == SIGSEGV)
            seen += " at address " + HexText(reinterpret_cast<std::uintptr_t>(death.address));
        return {Rule::Crash, entry, seen};
    }

    TemporaryInstallation place_;
    decltype(CallJournal::Make()) journal_;
    Pipe pipe_;
    Milliseconds limit_;
    pid_t child_ = -1;
    FindingReceiver receiver_;
    std::uint64_t progress_ = 0;
    Clock::time_point moved_ = Clock::now();
};

}  // namespace

const Stage kLoadingStage = {Meaning::Condition, true, &CheckLoading};

std::span<const Stage> RunningStages() { return kStages; }

bool Judge::IsWorthMore(const Finding& death) {
    return ++deaths_[{death.rule, death.entry}] < kMostDeathsOfOneKind;
}

bool Judge::Run(const Stage& stage) {
    bool isUsable = stage.meaning != Meaning::Condition;
    for (int firstStep = 0;;) {
        ChildRun run(stage, module_, kind_, limit_, firstStep);
        const auto death = run.Watch();
        const auto& found = run.Findings();
        findings_.insert(findings_.end(), found.begin(), found.end());
        if (death) findings_.push_back(*death);
        isUsable = isUsable || run.IsUsable();
        if (WasInterrupted() || !isUsable) return false;
        // A death before the first step would only repeat itself.
        if (!death || !IsWorthMore(*death) || run.Step() < firstStep) return true;
        firstStep = run.Step() + 1;
    }
}

}  // namespace oam::check
