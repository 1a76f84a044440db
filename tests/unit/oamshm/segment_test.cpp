// The shared array over a segment: what is published is what every view sees.
#include <csignal>
#include <cstring>
#include <thread>

#include "doors/room_test.h"
#include "objects/shadow.h"

namespace oam::test {
namespace {

constexpr const char* kSegment = "shm/OAM_BoardIDsShadow";

class Segment : public RoomTest {
  protected:
    static void Publish(CBoardIDsShadow& shadow, std::initializer_list<const char*> names,
                        bool vx = false) {
        ShadowImage image(vx);
        unsigned number = 0;
        for (const char* name : names) image.Add(CBoardIDShadow(name, number++, "", "", false));
        ASSERT_EQ(shadow.Publish(image), OAM_SUCCESS);
    }
    static std::vector<std::string> Names(CBoardIDsShadow& shadow) {
        std::vector<std::string> names;
        EXPECT_EQ(shadow.Read([&](const CBoardIDsShadow::Contents& contents) {
            for (int i = 0; i < contents.Count(); ++i) names.emplace_back(contents.At(i).name);
            return OAM_SUCCESS;
        }),
                  OAM_SUCCESS);
        return names;
    }
};

TEST_F(Segment, IsMadeEmptyWithItsLockAndItsName) {
    CBoardIDsShadow shadow;
    EXPECT_TRUE(shadow.IsUsable());
    EXPECT_EQ(home.Read(kSegment), std::string(10624, '\0'));
    EXPECT_TRUE(home.Exists("shm/OAM_BoardIDsShadowCKorSharedMemoryArray"));
    EXPECT_TRUE(Names(shadow).empty());
    EXPECT_EQ(shadow.GetSize(), 0);
}

TEST_F(Segment, HoldsWhatIsPublishedByteForByte) {
    CBoardIDsShadow shadow;
    Publish(shadow, {"A", "B"}, true);
    ShadowImage expected(true);
    expected.Add(CBoardIDShadow("A", 0, "", "", false));
    expected.Add(CBoardIDShadow("B", 1, "", "", false));
    EXPECT_EQ(home.Read(kSegment).substr(0, expected.Size()),
              std::string(reinterpret_cast<const char*>(expected.Bytes()), expected.Size()));
}

TEST_F(Segment, IsSharedByEveryView) {
    CBoardIDsShadow writer;
    CBoardIDsShadow reader;
    Publish(writer, {"A", "B"});
    EXPECT_THAT(Names(reader), ::testing::ElementsAre("A", "B"));
    Publish(writer, {"C"});
    EXPECT_THAT(Names(reader), ::testing::ElementsAre("C")) << "never a kept copy";
}

TEST_F(Segment, OutlivesItsViews) {
    {
        CBoardIDsShadow shadow;
        Publish(shadow, {"A"});
    }
    CBoardIDsShadow again;
    EXPECT_THAT(Names(again), ::testing::ElementsAre("A"));
}

TEST_F(Segment, ElementAccessReadsAndWritesBackTheFlagToo) {
    CBoardIDsShadow shadow;
    Publish(shadow, {"A", "B"}, true);
    const std::string before = home.Read(kSegment);
    EXPECT_EQ(shadow.GetSize(), 2);
    EXPECT_STREQ(shadow[1].name, "B");
    EXPECT_STREQ(shadow[7].name, "") << "a default record where there is none";
    EXPECT_EQ(home.Read(kSegment), before);
    EXPECT_TRUE(shadow.Add(CBoardIDShadow("C", 2, "", "", false)));
    EXPECT_THAT(Names(shadow), ::testing::ElementsAre("A", "B", "C"));
    EXPECT_EQ(shadow.Read([](const CBoardIDsShadow::Contents& contents) {
        EXPECT_TRUE(contents.IsUsingVxPlugin());
        return OAM_SUCCESS;
    }),
              OAM_SUCCESS);
}

TEST_F(Segment, ReadAnswersWhatItsUseAnswersAndGivesTheLockBack) {
    CBoardIDsShadow shadow;
    EXPECT_EQ(shadow.Read([](const CBoardIDsShadow::Contents&) { return OAMERR_NOT_FOUND; }),
              OAMERR_NOT_FOUND);
    std::thread([&] { EXPECT_TRUE(Names(shadow).empty()); }).join();
}

TEST_F(Segment, NestsItsLock) {
    CBoardIDsShadow shadow;
    ASSERT_TRUE(shadow.Lock());
    Publish(shadow, {"A"});
    EXPECT_EQ(shadow.GetSize(), 1);
    shadow.Unlock();
}

TEST_F(Segment, WithNonsenseInItIsNotRead) {
    CBoardIDsShadow shadow;
    Publish(shadow, {"A"});
    std::string bytes = home.Read(kSegment);
    bytes.replace(0, 4, "\xFF\xFF\xFF\x7F");
    // In place: the mapping stays.
    FILE* file = fopen(home.Path(kSegment).c_str(), "r+");
    ASSERT_NE(file, nullptr);
    fwrite(bytes.data(), 1, bytes.size(), file);
    fclose(file);
    bool used = false;
    EXPECT_EQ(shadow.Read([&](const CBoardIDsShadow::Contents&) {
        used = true;
        return OAM_SUCCESS;
    }),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_FALSE(used);
    Publish(shadow, {"B"});
    EXPECT_THAT(Names(shadow), ::testing::ElementsAre("B")) << "the next publication mends it";
}

TEST_F(Segment, ThatCannotBeHadIsNotUsable) {
    setenv("KOR_SHM_DIR", home.Path("nowhere").c_str(), 1);
    CBoardIDsShadow shadow;
    EXPECT_FALSE(shadow.IsUsable());
    ShadowImage image(false);
    EXPECT_EQ(shadow.Publish(image), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(shadow.Read([](const CBoardIDsShadow::Contents&) { return OAM_SUCCESS; }),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_FALSE(shadow.prefix());
    EXPECT_EQ(shadow.GetSize(), 0);
}

}  // namespace
}  // namespace oam::test
