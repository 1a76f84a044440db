// A journal that takes nothing keeps nobody waiting, and what it missed is told.
#include "journal/journal_queue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>

namespace oam::server {
namespace {

using Lines = std::vector<std::string>;

TEST(JournalQueue, SendsEveryLineInOrderBeforeItEnds) {
    Lines sent;
    constexpr int kLines = 1000;
    {
        JournalQueue queue([&](const Lines& fields) { sent.push_back(fields.at(0)); }, kLines);
        for (int i = 0; i < kLines; ++i) queue.Put({std::to_string(i)});
    }
    ASSERT_EQ(sent.size(), static_cast<std::size_t>(kLines));
    for (int i = 0; i < kLines; ++i)
        EXPECT_EQ(sent[static_cast<std::size_t>(i)], std::to_string(i));
}

TEST(JournalQueue, LeavesOutWhatThereIsNoRoomForAndTellsHowMuch) {
    Lines sent;
    std::promise<void> opened;
    std::promise<void> begun;
    {
        JournalQueue queue(
            [&, first = true, gate = opened.get_future().share()](const Lines& fields) mutable {
                if (std::exchange(first, false)) {
                    begun.set_value();
                    gate.wait();
                }
                sent.push_back(fields.at(0));
            },
            3);
        queue.Put({"the one that hangs"});
        begun.get_future().wait();
        for (const char* line : {"a", "b", "c", "d", "e"}) queue.Put({line});
        opened.set_value();
    }
    EXPECT_THAT(sent, ::testing::ElementsAre("the one that hangs", "a", "b", "c",
                                             "MESSAGE=2 lines were left out"));
}

TEST(JournalQueue, EndsWithoutAJournalThatTakesNothing) {
    // They outlive the queue, as its thread does.
    const auto opened = std::make_shared<std::promise<void>>();
    const auto left = std::make_shared<std::promise<void>>();
    {
        JournalQueue queue(
            [gate = opened->get_future().share(), left](const Lines&) {
                gate.wait();
                left->set_value();
            },
            3);
        queue.Put({"a"});
    }
    opened->set_value();
    left->get_future().wait();
}

}  // namespace
}  // namespace oam::server
