// The daemon is killed, the power fails or the system refuses something in the middle of putting
// files back: the next start finishes it, and no byte of a spoiled file is lost.
#include <sys/wait.h>

#include <filesystem>

#include "history_fixture.h"
#include "points.h"
#include "recorded_disk.h"
#include "system_errors.h"
#include "traced_child.h"

namespace oam::server::test {

namespace fs = std::filesystem;
using torture::Decision;
using torture::RunTraced;
using torture::SystemCall;

class RestoreCrash : public HistoryTest {
  protected:
    RestoreCrash() {
        files.CommitBoard("Obj0.xmo", "Board 1");
        files.CommitBoard("Obj1.xmo", "Board 2");
        files.CommitBoard("Obj2.xmo", "Board 3");
        (void)history->RestoreSpoiled();
        history.reset();
        files.Commit("Obj0.xmo", kSpoiled);
        files.Delete("Obj1.xmo");
        fs::copy(home.Path("oam"), home.Path("before"), fs::copy_options::recursive);
    }

    // As after the power failed that spoiled the files; `files`: what lies in "cfg" instead.
    void Renew(const torture::Files* found = nullptr) const {
        fs::remove_all(home.Path("oam"));
        fs::copy(home.Path("before"), home.Path("oam"), fs::copy_options::recursive);
        if (found == nullptr) return;
        fs::remove_all(files.Directory());
        home.MakeDirectory("oam/cfg");
        for (const auto& [name, data] : *found) home.WriteDataFile(name, *data);
    }

    // For a child.
    int Restore() {
        Reopen();
        torture::TraceFromHere();
        int status = 2;
        try {
            status = history->RestoreSpoiled().size() == 2 ? 0 : 1;
        } catch (const std::runtime_error&) {
        }
        torture::TraceUntilHere();
        history.reset();
        return status;
    }

    // The daemon's next start.
    void ExpectThatTheNextStartFinishes() {
        Reopen();
        (void)history->RestoreSpoiled();
        EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), BoardFile("Board 1"));
        EXPECT_EQ(home.ReadDataFile("Obj1.xmo"), BoardFile("Board 2"));
        EXPECT_EQ(home.ReadDataFile("Obj2.xmo"), BoardFile("Board 3"));
        EXPECT_EQ(home.ReadDataFile("Obj0.xmo.spoiled-1"), kSpoiled);
        for (const std::string& name : home.List("oam/cfg"))
            EXPECT_TRUE(name.starts_with("Obj") &&
                        (name.ends_with(".xmo") || name.ends_with(".saving") ||
                         name.starts_with("Obj0.xmo.spoiled-")))
                << name;
        EXPECT_TRUE(history->Compare(1, 0).empty());
        history.reset();
    }

    const std::string kSpoiled = "cut sho";
};

TEST_F(RestoreCrash, AKillBeforeAnySystemCallCostsNothing) {
    std::size_t calls = 0;
    EXPECT_EQ(RunTraced([&] { return Restore(); },
                        [&](const SystemCall&) {
                            ++calls;
                            return Decision{};
                        }),
              0);
    ASSERT_GT(calls, 100u);
    const auto points = torture::ChosenPoints(calls, 60);
    for (const std::size_t point : points) {
        SCOPED_TRACE("killed before call " + std::to_string(point));
        std::size_t call = 0;
        Renew();
        RunTraced([&] { return Restore(); },
                  [&](const SystemCall&) {
                      return call++ == point ? Decision{Decision::Kind::kKill, 0} : Decision{};
                  });
        ExpectThatTheNextStartFinishes();
    }
    torture::TellFigures(
        "kill points, restoring spoiled files",
        std::to_string(points.size()) + " of " + std::to_string(calls) + " calls, 0 lost");
}

TEST_F(RestoreCrash, APowerLossAtAnyMomentCostsNothing) {
    torture::RecordedDisk disk(files.Directory());
    EXPECT_EQ(RunTraced([&] { return Restore(); }, [](const SystemCall&) { return Decision{}; },
                        [&](const SystemCall& call, long result) { disk.Observe(call, result); }),
              0);
    const auto states = disk.States(8);
    ASSERT_GT(states.size(), 5u);
    const auto chosen = torture::ChosenPoints(states.size(), 60);
    for (const std::size_t index : chosen) {
        SCOPED_TRACE("after event " + std::to_string(states[index].event) + " of " +
                     std::to_string(disk.Events()) + ", " + states[index].what);
        Renew(states[index].files.get());
        ExpectThatTheNextStartFinishes();
    }
    torture::TellFigures("power loss, restoring spoiled files",
                         std::to_string(chosen.size()) + " of " + std::to_string(states.size()) +
                             " disks after " + std::to_string(disk.Events()) + " events, 0 lost");
}

TEST_F(RestoreCrash, AFailureOfAnySystemCallCostsNothing) {
    struct Point {
        std::size_t call;
        long number;
        Decision failure;
    };
    std::vector<Point> points;
    std::size_t calls = 0;
    EXPECT_EQ(RunTraced([&] { return Restore(); },
                        [&](const SystemCall& made) {
                            for (const Decision& failure : torture::FailuresOf(made.number))
                                points.push_back({calls, made.number, failure});
                            ++calls;
                            return Decision{};
                        }),
              0);
    ASSERT_GT(points.size(), 100u);
    const auto chosen = torture::ChosenPoints(points.size(), 60);
    for (const std::size_t index : chosen) {
        const Point& point = points[index];
        SCOPED_TRACE(std::string(torture::CallName(point.number)) + ", call " +
                     std::to_string(point.call) + ", errno " + std::to_string(point.failure.error));
        std::size_t call = 0;
        Renew();
        const int status = RunTraced(
            [&] { return Restore(); },
            [&](const SystemCall&) { return call++ == point.call ? point.failure : Decision{}; });
        EXPECT_TRUE(WIFEXITED(status)) << status;
        ExpectThatTheNextStartFinishes();
    }
    torture::TellFigures(
        "I/O errors, restoring spoiled files",
        std::to_string(chosen.size()) + " of " + std::to_string(points.size()) + " points, 0 lost");
}

}  // namespace oam::server::test
