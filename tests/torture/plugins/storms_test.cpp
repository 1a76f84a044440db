// Modules that answer each alert by more alerts, all of them, on several threads: the storm has an
// end, and nobody waits for somebody who waits for him.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "figures.h"
#include "oam/entry.h"
#include "support/objects.h"
#include "trial.h"

namespace oam::torture {
namespace {

const std::vector<std::string> kAll = {kPlugin, kGoodPlugin, kComponent, kGoodComponent};

struct Storm {
    const char* name;
    std::vector<std::string> modules;
    int threads;  // that raise alerts
    int answers;  // of each to each alert
    unsigned (*answer)(const test::RecordedCall&);
};

std::ostream& operator<<(std::ostream& out, const Storm& storm) { return out << storm.name; }

unsigned answerByAlert(const test::RecordedCall&) {
    return test::Raise(OAMEVN_TEMPERATURE_WARNING, OAM_WARNING, kBoard, "so am I");
}

// A commit's alerts come under the manager lock.
unsigned answerByRename(const test::RecordedCall& call) {
    const std::string name = "Thing of " + call.file;
    return test::DbChange(kThing, "Name", name) == OAM_SUCCESS
               ? unsigned{test::DbChange(name, "Name", kThing)}
               : 0u;
}

const Storm kStorms[] = {
    {"one component", {kComponent}, 4, 1, &answerByAlert},
    {"one of each kind", {kComponent, kPlugin}, 4, 1, &answerByAlert},
    {"all of them", kAll, 4, 1, &answerByAlert},
    {"all of them twice", kAll, 4, 2, &answerByAlert},
    {"one of each kind by a change", {kComponent, kPlugin}, 2, 1, &answerByRename},
    {"all of them by a change", kAll, 2, 1, &answerByRename},
};

// More than the service lets so many alerts lead to.
constexpr int kMostAnswers = 2000000;

class AlertStorm : public testing::TestWithParam<Storm> {};

TEST_P(AlertStorm, HasAnEndOnAnyNumberOfThreads) {
    const Storm& storm = GetParam();
    CountPoints(1);
    TryCase(std::string("a storm of ") + storm.name, &FurnishWorld,
            [&](const test::Installation& home, const Watched& watched) {
                World world(home);
                world.Start();
                std::atomic<int> answers{0};
                world.Arm(storm.modules, "AlertReceive", [&](const test::RecordedCall& call) {
                    for (int i = 0; i < storm.answers; ++i) {
                        if (++answers > kMostAnswers) return std::optional<unsigned>();
                        (void)storm.answer(call);
                    }
                    return std::optional<unsigned>();
                });
                watched.Doing("the storm");
                std::vector<std::thread> threads;
                for (int i = 0; i < storm.threads; ++i) {
                    threads.emplace_back([] {
                        (void)test::Raise(OAMEVN_BOARD_DEAD, OAM_ERROR, kBoard, "it is dead");
                        (void)test::Change(kGoodBoard, "Gain", "4");
                    });
                }
                for (std::thread& thread : threads) thread.join();
                EXPECT_GT(answers, storm.threads);
                EXPECT_LT(answers, kMostAnswers) << "it goes on for ever";
                watched.Doing("a look around afterwards");
                world.ExpectStanding();
            });
}

INSTANTIATE_TEST_SUITE_P(Of, AlertStorm, testing::ValuesIn(kStorms), [](const auto& row) {
    std::string title;
    bool isFirst = true;
    for (const char* letter = row.param.name; *letter != '\0'; ++letter) {
        if (*letter != ' ') title += isFirst ? static_cast<char>(std::toupper(*letter)) : *letter;
        isFirst = *letter == ' ';
    }
    return title;
});

}  // namespace
}  // namespace oam::torture
