#include "sensor_monitor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <string>

#include "waiting.h"

namespace oam::sim {
namespace {

constexpr Thresholds kThresholds = {
    .temperatureWarning = 700, .temperatureAlert = 850, .fanWarning = 1500};

std::shared_ptr<Chassis> chassisWith(const std::string& temperature) {
    BoardPlan plan;
    plan.name = "Left";
    plan.product = "E1";
    plan.location = {1, 2};
    plan.temperature = *Curve::Parse(temperature, 0, 2000);
    auto chassis = std::make_shared<Chassis>();
    EXPECT_TRUE(chassis->Load({plan}, kThresholds).empty());
    return chassis;
}

oam_result startBoard(Chassis& chassis) { return chassis.At({1, 2})->Run(Operation::Start, {}); }

TEST(SensorMonitor, TellsAStepOfACurveByItself) {
    const auto chassis = chassisWith("350, 900 after 20ms");
    std::promise<std::vector<BoardEvent>> told;
    SensorMonitor monitor;
    monitor.Begin(chassis, [&](const std::vector<BoardEvent>& events) { told.set_value(events); });
    EXPECT_EQ(startBoard(*chassis), OAM_SUCCESS);
    monitor.Wake();
    auto events = told.get_future();
    ASSERT_EQ(events.wait_for(kLimit), std::future_status::ready);
    EXPECT_EQ(events.get().at(0).code, OAMEVN_TEMPERATURE_ALERT);
}

TEST(SensorMonitor, EndsWhileItWaits) {
    SensorMonitor monitor;
    monitor.Begin(chassisWith("350"), [](const std::vector<BoardEvent>&) {});
    monitor.End(kLimit);
    monitor.End(kLimit);
}

TEST(SensorMonitor, CanEndWithoutHavingBegun) { SensorMonitor().End(kLimit); }

// What a delivery and its test tell each other; it outlives both.
struct Delivery {
    std::promise<void> entered;
    std::promise<void> mayLeave;
    std::atomic<bool> isLeft = false;
};

SensorMonitor::Deliver heldBackBy(const std::shared_ptr<Delivery>& delivery) {
    return [delivery, mayLeave = delivery->mayLeave.get_future().share()](const auto&) {
        delivery->entered.set_value();
        mayLeave.wait();
        delivery->isLeft = true;
    };
}

TEST(SensorMonitor, WaitsForADeliveryBeforeItEnds) {
    const auto delivery = std::make_shared<Delivery>();
    SensorMonitor monitor;
    monitor.Begin(chassisWith("900"), heldBackBy(delivery));
    delivery->entered.get_future().wait();
    auto end = std::async(std::launch::async, [&] { monitor.End(kLimit); });
    delivery->mayLeave.set_value();
    end.wait();
    EXPECT_TRUE(delivery->isLeft);
}

TEST(SensorMonitor, IsLetGoWhenADeliveryDoesNotEnd) {
    const auto delivery = std::make_shared<Delivery>();
    {
        SensorMonitor monitor;
        monitor.Begin(chassisWith("900"), heldBackBy(delivery));
        delivery->entered.get_future().wait();
        monitor.End(std::chrono::milliseconds(0));
    }
    EXPECT_FALSE(delivery->isLeft);
    delivery->mayLeave.set_value();
    // The thread lets go of the delivery when it ends; the test keeps its own share.
    EXPECT_TRUE(becomesTrue([&] { return delivery.use_count() == 1; }));
}

}  // namespace
}  // namespace oam::sim
