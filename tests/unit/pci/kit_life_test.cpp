// The kit's frame of a module: its one life, its handles, its answers and its alerts.
#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>
#include <thread>

#include "kit/alert_record.h"
#include "kit/answer_text.h"
#include "kit/handle_map.h"
#include "kit/life.h"

namespace oam::kit {
namespace {

struct Module {
    explicit Module(oam_result given) : begin(given) {}
    oam_result Begin() { return begin; }
    void End() { hasEnded = true; }

    oam_result begin;
    bool hasEnded = false;
};

class LifeOfAModule : public ::testing::Test {
  protected:
    void TearDown() override { EXPECT_EQ(life.End(), OAM_SUCCESS); }
    unsigned int Use() {
        return life.With([](Module&) { return 7u; });
    }
    Life<Module>& life = Life<Module>::Place();
};

TEST_F(LifeOfAModule, IsThereFromBeginToEnd) {
    EXPECT_EQ(Use(), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(life.Begin(OAM_SUCCESS), OAM_SUCCESS);
    EXPECT_EQ(Use(), 7u);
    EXPECT_EQ(life.End(), OAM_SUCCESS);
    EXPECT_EQ(Use(), OAMERR_SERVER_NOT_RUNNING);
}

TEST_F(LifeOfAModule, IsNotThereWhenBeginFails) {
    EXPECT_EQ(life.Begin(OAMERR_FILE_READ_ERROR), OAMERR_FILE_READ_ERROR);
    EXPECT_EQ(Use(), OAMERR_SERVER_NOT_RUNNING);
}

TEST_F(LifeOfAModule, LetsNoExceptionOut) {
    EXPECT_EQ(life.Begin(OAM_SUCCESS), OAM_SUCCESS);
    EXPECT_EQ(life.With([](Module&) -> unsigned { throw std::bad_alloc(); }),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(life.With([](Module&) -> unsigned { throw std::runtime_error("x"); }),
              OAM_REASON_FAILED);
    EXPECT_EQ(life.With([](Module&) -> unsigned { throw 1; }), OAM_REASON_FAILED);
}

TEST_F(LifeOfAModule, LastsForAThreadThatIsStillInside) {
    EXPECT_EQ(life.Begin(OAM_SUCCESS), OAM_SUCCESS);
    const auto result = life.With([&](Module& module) {
        std::thread([&] { EXPECT_EQ(life.End(), OAM_SUCCESS); }).join();
        return module.hasEnded ? 1u : 0u;
    });
    EXPECT_EQ(result, 1u);
}

TEST(KitHandleMap, KnowsEachHandleUntilItIsRemoved) {
    HandleMap<std::string> map;
    map.Set(1, "one");
    map.Set(1, "uno");
    EXPECT_EQ(map.Find(1), "uno");
    EXPECT_EQ(map.Find(2), "");
    EXPECT_EQ(map.Remove(1), "uno");
    EXPECT_EQ(map.Remove(1), "");
}

TEST(KitAnswer, IsCopiedOnlyWhenItFits) {
    std::array<char, 4> buffer = {'x', 'x', 'x', '\0'};
    EXPECT_EQ(answerText({}, buffer.data(), 4), OAMERR_NOT_FOUND);
    EXPECT_EQ(answerText("four", buffer.data(), 4), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer.data(), "xxx");
    EXPECT_EQ(answerText("abc", buffer.data(), 4), OAM_SUCCESS);
    EXPECT_STREQ(buffer.data(), "abc");
    EXPECT_EQ(answerText("abc", nullptr, 0), OAM_SUCCESS);
}

TEST(KitAlertRecord, HoldsSourceAndText) {
    const AlertRecord record(0x1234, OAM_WARNING, "source", "text %s");
    const auto* const message = record.Message();
    EXPECT_EQ(message->code, 0x1234u);
    EXPECT_EQ(message->severity, static_cast<unsigned>(OAM_WARNING));
    EXPECT_EQ(message->size, 24 + sizeof "source" + sizeof "text %s");
    EXPECT_STREQ(oamMessageSource(message), "source");
    EXPECT_STREQ(oamMessageText(message), "text %s");
}

TEST(KitAlertRecord, CutsWhatIsTooLongOrHoldsANul) {
    const AlertRecord record(0, 0, std::string_view("so\0urce", 7), std::string(300, 'x'));
    EXPECT_STREQ(oamMessageSource(record.Message()), "so");
    EXPECT_EQ(std::string(oamMessageText(record.Message())), std::string(255, 'x'));
}

}  // namespace
}  // namespace oam::kit
