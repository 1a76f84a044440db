// Shared files on systems that refuse: an error at every system call that it takes to make or
// attach one, on each kind of file system. The file is refused, or it is as it must be; nothing
// lies about, and the next one finds it in order.
#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>
#include <vector>

#include "korcore/shared_file.h"
#include "shared_directory.h"
#include "system_errors.h"
#include "traced_child.h"

namespace {

using oam::torture::Decide;
using oam::torture::Decision;
using oam::torture::SystemCall;

constexpr char kName[] = "segment";
constexpr size_t kSize = 8192;

// The call is not made, and answers this.
constexpr Decision answer(int error) { return {Decision::Kind::kFail, error}; }

bool isNamelessOpen(const SystemCall& call) {
    return call.number == SYS_openat && (call.arguments[2] & O_TMPFILE) == O_TMPFILE;
}
bool isLock(const SystemCall& call) {
    return call.number == SYS_flock && (call.arguments[1] & LOCK_EX) != 0;
}
bool isPause(const SystemCall& call) {
    return call.number == SYS_nanosleep || call.number == SYS_clock_nanosleep;
}

bool fillWithA(void* data, size_t size) {
    std::memset(data, 'a', size);
    return true;
}

// What a file system, or the host's rules, never do.
struct System {
    const char* name;
    Decision (*answers)(const SystemCall&);
};
const System kSystems[] = {
    {"ThatRefusesNothing", [](const SystemCall&) { return Decision{}; }},
    {"WithoutNamelessFiles",
     [](const SystemCall& call) { return isNamelessOpen(call) ? answer(EOPNOTSUPP) : Decision{}; }},
    {"ThatNamesNoOpenFile",
     [](const SystemCall& call) {
         return call.number == SYS_linkat ? answer(EACCES) : Decision{};
     }},
    {"ThatReservesNoRoom",
     [](const SystemCall& call) {
         return call.number == SYS_fallocate ? answer(EOPNOTSUPP) : Decision{};
     }},
};

// Beside what the rigs of the service try, the calls that only a shared file makes.
std::vector<Decision> failuresOf(long number) {
    auto failures = oam::torture::FailuresOf(number);
    const auto add = [&](long which, std::initializer_list<int> errors) {
        if (number != which) return;
        for (const int error : errors) failures.push_back(answer(error));
    };
    add(SYS_fallocate, {EINTR});
    add(SYS_fchmod, {EPERM});
    add(SYS_flock, {ENOLCK, EINTR});
    add(SYS_linkat, {EACCES, ENOSPC});
    add(SYS_lseek, {EIO});
    add(SYS_pwrite64, {EINTR, ENOSPC});
    add(SYS_renameat2, {EACCES, EINVAL});
    add(SYS_unlink, {ENOENT});  // another process was quicker
    return failures;
}

enum Result { kOpened, kRefused, kWrong, kDescriptorLeft };

class FailingCalls : public SharedDirectory, public testing::WithParamInterface<System> {
  protected:
    // In a child whose calls are looked at.
    int Traced(const Decide& decide, const std::function<int(KorSharedFile&)>& work) const {
        const int status = oam::torture::RunTraced(
            [&] {
                const auto before = openDescriptors();
                int result;
                {
                    KorSharedFile file;
                    oam::torture::TraceFromHere();
                    result = work(file);
                    oam::torture::TraceUntilHere();
                }
                return openDescriptors() == before ? result : int{kDescriptorLeft};
            },
            decide);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    static int OpenIt(KorSharedFile& file, const std::string& expected) {
        if (!file.Open(kName, kSize, fillWithA)) return file.IsOpen() ? kWrong : kRefused;
        return file.IsWhole() && Contents(file) == expected ? kOpened : kWrong;
    }
    static std::string Contents(const KorSharedFile& file) {
        return {static_cast<const char*>(file.Data()), file.Size()};
    }

    void TryEachCall(const std::string* found, const std::string& expected);

  private:
    static std::ptrdiff_t openDescriptors() {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return std::distance(begin(all), end(all));
    }
};

// `found` is what lies there before, if anything.
void FailingCalls::TryEachCall(const std::string* found, const std::string& expected) {
    const auto renew = [&] {
        for (const auto& entry : std::filesystem::directory_iterator(Directory()))
            std::filesystem::remove(entry);
        if (found != nullptr) WriteFile(kName, *found);
    };
    const auto open = [&](KorSharedFile& file) { return OpenIt(file, expected); };
    std::vector<long> calls;
    renew();
    const auto note = [&](const SystemCall& call) {
        calls.push_back(call.number);
        return GetParam().answers(call);
    };
    ASSERT_EQ(kOpened, Traced(note, open));
    for (size_t point = 0; point < calls.size(); ++point) {
        for (const Decision& failure : failuresOf(calls[point])) {
            SCOPED_TRACE("call " + std::to_string(point) + ", of number " +
                         std::to_string(calls[point]) + ": " + strerrorname_np(failure.error));
            renew();
            size_t call = 0;
            bool isDone = false;
            const auto decide = [&](const SystemCall& made) {
                const Decision always = GetParam().answers(made);
                // The search for a free name takes more calls at times: the next one of the kind.
                const bool isBehind = call++ >= point && made.number == calls[point];
                if (isDone || !isBehind || always.kind != Decision::Kind::kGo) return always;
                isDone = true;
                return failure;
            };
            const int result = Traced(decide, open);
            EXPECT_TRUE(result == kOpened || result == kRefused) << result;
            const size_t mayStay = calls[point] == SYS_unlink ? 1 : 0;
            KorSharedFile next;
            ASSERT_TRUE(next.Open(kName, kSize, fillWithA));
            EXPECT_EQ(expected, Contents(next));
            EXPECT_LE(FileCount(), 1 + mayStay);
        }
    }
}

TEST_P(FailingCalls, MakeAFileOrRefuseIt) { TryEachCall(nullptr, std::string(kSize, 'a')); }

TEST_P(FailingCalls, CompleteAnEmptyFileOrRefuseIt) {
    const std::string empty;
    TryEachCall(&empty, std::string(kSize, 'a'));
}

TEST_P(FailingCalls, GrowAShorterFileOrRefuseIt) {
    const std::string head = "head";
    TryEachCall(&head, head + std::string(kSize - head.size(), '\0'));
}

INSTANTIATE_TEST_SUITE_P(OnASystem, FailingCalls, testing::ValuesIn(kSystems),
                         [](const auto& row) { return std::string(row.param.name); });

class RefusingSystem : public FailingCalls {};

// Whatever the others do, an opening comes to its end.
TEST_F(RefusingSystem, IsGivenUpOnWhenAnotherIsQuickerEveryTime) {
    size_t tries = 0;
    const auto decide = [&](const SystemCall& call) {
        if (call.number != SYS_linkat) return Decision{};
        ++tries;
        return answer(EEXIST);
    };
    EXPECT_EQ(kRefused, Traced(decide, [](KorSharedFile& file) { return OpenIt(file, ""); }));
    EXPECT_GT(tries, 10u);
    EXPECT_EQ(0U, FileCount());
}

TEST_F(RefusingSystem, IsGivenUpOnWhenItsLockIsNeverFree) {
    WriteFile(kName, std::string(kSize, 'l'));
    size_t pauses = 0;
    const auto decide = [&](const SystemCall& call) {
        if (isLock(call)) return answer(EWOULDBLOCK);
        if (!isPause(call)) return Decision{};
        ++pauses;
        return answer(0);  // over at once
    };
    EXPECT_EQ(kRefused, Traced(decide, [](KorSharedFile& file) { return OpenIt(file, ""); }));
    EXPECT_GT(pauses, 1000u);
}

TEST_F(RefusingSystem, IsAskedAgainForALockWhenASignalInterrupts) {
    WriteFile(kName, std::string(kSize, 'l'));
    int interruptions = 3;
    const auto decide = [&](const SystemCall& call) {
        return isLock(call) && interruptions-- > 0 ? answer(EINTR) : Decision{};
    };
    EXPECT_EQ(kOpened, Traced(decide, [](KorSharedFile& file) {
                  return OpenIt(file, std::string(kSize, 'l'));
              }));
    EXPECT_LT(interruptions, 0);
}

TEST_F(RefusingSystem, LetsNobodyWorkWithoutTheLock) {
    WriteFile(kName, std::string(kSize, 'l'));
    bool isOpen = false;
    const auto decide = [&](const SystemCall& call) {
        // The first one is the opening's.
        if (!isLock(call) || !std::exchange(isOpen, true)) return Decision{};
        return answer(ENOLCK);
    };
    const auto spoil = [](void* data, size_t size, void*) { return fillWithA(data, size); };
    EXPECT_EQ(kRefused, Traced(decide, [&](KorSharedFile& file) {
                  if (!file.Open(kName, kSize, nullptr)) return kWrong;
                  return file.UnderLock(spoil, nullptr) ? kOpened : kRefused;
              }));
    EXPECT_EQ(std::string(kSize, 'l'), ReadFile(kName));
}

// A held lock must not be given up because nobody can look.
TEST_F(RefusingSystem, ThatTellsNoLengthLeavesAFileWhole) {
    const auto decide = [](const SystemCall& call) {
        return call.number == SYS_lseek ? answer(EIO) : Decision{};
    };
    EXPECT_EQ(kOpened, Traced(decide, [](KorSharedFile& file) {
                  return OpenIt(file, std::string(kSize, 'a'));
              }));
}

}  // namespace
