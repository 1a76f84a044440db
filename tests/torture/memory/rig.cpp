#include "rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "digest.h"
#include "held_threads.h"

namespace oam::torture {

namespace {

// In the quick run so many points of a row are tried, spread evenly with the first and the last.
constexpr std::size_t kQuickPoints = 24;

std::vector<std::size_t> chosenPoints(std::size_t requests, bool all) {
    std::vector<std::size_t> points;
    if (all || requests <= kQuickPoints) {
        for (std::size_t i = 1; i <= requests; ++i) points.push_back(i);
    } else {
        for (std::size_t i = 0; i < kQuickPoints; ++i) {
            points.push_back(1 + i * (requests - 1) / (kQuickPoints - 1));
        }
    }
    return points;
}

std::string codeText(unsigned code) {
    const char* name = _oamGetText(code);
    return name != nullptr ? name : std::to_string(code);
}

// What must be the same before a row and behind it.
struct Standing {
    std::string digest;
    std::string openThings;
};

Standing lookAround(World& world) { return {Digest(world), OpenThings()}; }

// What a closed object keeps of its data file is kept, not lost. It gives it up when it is opened
// to be changed; a change that takes its name away is refused, so its file stays.
void giveUpWhatIsKept() {
    char name[256];
    for (int i = 0; _oamDbEnumObjects(i, name, sizeof name) == OAM_SUCCESS; ++i) {
        unsigned long handle;
        if (_oamDbOpenObject(name, &handle, OAM_OPEN_WRITE | OAM_OPEN_PROVIDER) != OAM_SUCCESS) {
            continue;
        }
        (void)_oamDbRemoveKeyword(handle, "Name");
        (void)_oamDbCloseObject(handle);
    }
}

// What was recorded is the test's own.
long blocksInUse(World& world) {
    giveUpWhatIsKept();
    world.recorder.Clear();
    world.alerts.Clear();
    return LiveBlocks();
}

int failedExpectations() {
    return ::testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

class Rig {
  public:
    Rig(World& world, const Row& row) : world_(world), row_(row) {}

    Figures Run() {
        LearnWithMemory();
        if (::testing::Test::HasFatalFailure()) return figures_;
        const auto points = chosenPoints(figures_.requests, IsFull() || row_.isIntricate);
        TryAll(points, Failing::kOnce);
        if (IsFull() || row_.isVital) TryAll(points, Failing::kFromThereOn);
        return figures_;
    }

  private:
    unsigned Call(std::size_t nth, Failing how) {
        const HeldThreads hold;
        const MemoryFuse fuse(nth, how);
        const unsigned code = row_.call(world_);
        if (nth == 0) figures_.requests = fuse.Requests();
        return code;
    }

    void Prepare() {
        world_.text[0] = '\0';
        if (row_.prepare != nullptr) row_.prepare(world_);
        RunHeldThreads();
    }

    void Undo() {
        if (row_.undo != nullptr) row_.undo(world_);
        world_.text[0] = '\0';
        RunHeldThreads();
    }

    // Twice, since what is made once for the whole process is not what the call needs.
    void LearnWithMemory() {
        for (int i = 0; i < 2; ++i) {
            Prepare();
            before_ = Digest(world_);
            const unsigned succeeded = Call(0, Failing::kOnce);
            RunHeldThreads();
            after_ = Digest(world_);
            Undo();
            ASSERT_EQ(succeeded, OAM_SUCCESS) << row_;
            const Standing standing = lookAround(world_);
            if (i == 1) {
                ASSERT_EQ(standing.digest, standing_.digest) << row_ << " is not undone";
            }
            standing_ = standing;
        }
    }

    void TryAll(const std::vector<std::size_t>& points, Failing how) {
        for (const std::size_t nth : points) {
            SCOPED_TRACE(::testing::Message()
                         << row_ << ", " << world_.Count() << " of each, request " << nth << " of "
                         << figures_.requests
                         << (how == Failing::kOnce ? " failed" : " and all later ones failed"));
            ++figures_.tried;
            const int failuresBefore = failedExpectations();
            long left = 0;
            const bool isRight = Try(nth, how, &left);
            const bool isLost = isRight && left > 0 && LosesEachTime(nth, how);
            EXPECT_FALSE(isLost) << left << " blocks of memory are lost";
            if (!Stands()) world_.StartAnew();
            if (failedExpectations() != failuresBefore) ++figures_.wrong;
        }
    }

    // What is kept until the next commit is kept once; what is lost is lost each time.
    bool LosesEachTime(std::size_t nth, Failing how) {
        for (int i = 0; i < 2; ++i) {
            long left = 0;
            (void)Try(nth, how, &left);
            if (left <= 0) return false;
        }
        return true;
    }

    // `left` are the blocks of memory more than before.
    bool Try(std::size_t nth, Failing how, long* left) {
        const long blocks = blocksInUse(world_);
        const bool isRight = TryOnce(nth, how);
        *left = blocksInUse(world_) - blocks;
        return isRight;
    }

    bool TryOnce(std::size_t nth, Failing how) {
        Prepare();
        const unsigned code = Call(nth, how);
        RunHeldThreads();
        const bool isFailure = code != OAM_SUCCESS;
        bool isRight = true;
        if (isFailure && row_.mend != nullptr) {
            isRight = row_.mend(world_);
            RunHeldThreads();
        }
        const std::string found = Digest(world_);
        const bool keeps = isFailure && row_.mend == nullptr;
        const Outcome outcome{code, found, before_, after_, standing_.digest};
        const bool isAccepted = row_.accepts != nullptr && row_.accepts(world_, outcome);
        if (!isAccepted) isRight = Same("state", keeps ? before_ : after_, found, code) && isRight;
        const auto& failures = row_.failures;
        if (isFailure && std::find(failures.begin(), failures.end(), code) == failures.end()) {
            ADD_FAILURE() << "answered " << codeText(code);
            isRight = false;
        }
        Undo();
        return isRight;
    }

    static bool Same(const char* what, const std::string& expected, const std::string& found,
                     unsigned code) {
        if (expected == found) return true;
        ADD_FAILURE() << what << " after " << codeText(code) << ":\n"
                      << Difference(expected, found);
        return false;
    }

    // Nothing is left behind: no change, no lock, no file and no open object.
    bool Stands() {
        const Standing found = lookAround(world_);
        const bool isUnlocked = IsUnlocked();
        EXPECT_TRUE(isUnlocked) << "another thread waits for a lock";
        EXPECT_EQ(found.openThings, standing_.openThings);
        return Same("what stays", standing_.digest, found.digest, OAM_SUCCESS) && isUnlocked &&
               found.openThings == standing_.openThings;
    }

    World& world_;
    const Row& row_;
    Figures figures_;
    Standing standing_;
    std::string before_;
    std::string after_;
};

}  // namespace

Figures& Figures::operator+=(const Figures& other) {
    requests += other.requests;
    tried += other.tried;
    wrong += other.wrong;
    return *this;
}

Figures TryRow(World& world, const Row& row) { return Rig(world, row).Run(); }

bool IsFull() {
    const char* wanted = std::getenv("OAM_TORTURE");
    return wanted != nullptr && std::string_view(wanted) == "full";
}

}  // namespace oam::torture
