// What any process calls to read the shadow.
#include <atomic>
#include <thread>

#include "doors/room_test.h"
#include "oam/shadow.h"
#include "objects/shadow.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

constexpr unsigned kIgnored = 12345;

class Readers : public RoomTest {
  protected:
    ~Readers() override { EXPECT_EQ(oamShadowExit(), OAM_SUCCESS); }

    void Publish(bool vx = false) {
        ASSERT_EQ(oamShadowInit(), OAM_SUCCESS);
        ShadowImage image(vx);
        image.Add(CBoardIDShadow("Alpha", 5, "Driver", "Ident", true));
        image.Add(CBoardIDShadow("Bravo", 5, "Driver", "Other", false));
        ASSERT_EQ(oamShadowGetPtr()->Publish(image), OAM_SUCCESS);
    }

    char name[16] = "before";
    char other[16] = "before";
    unsigned number = 42;
    bool flag = false;
};

TEST_F(Readers, WithoutAViewHaveNothingToRead) {
    EXPECT_EQ(oamShadowGetPtr(), nullptr);
    EXPECT_EQ(oamShadowBoardEnum(kIgnored, 0, name, sizeof name), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardLookupByNumber(kIgnored, 5, name, sizeof name),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardLookupByDriverIDs(kIgnored, "a", "b", name, sizeof name),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardGetNumber(kIgnored, "Alpha", &number), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardGetDriverIDs(kIgnored, "Alpha", name, 16, other, 16),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardGetIsUsingVxPlugin(kIgnored, &flag), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardIsUsingALaw(kIgnored, "Alpha", &flag), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(name, "before");
    EXPECT_EQ(number, 42u);
}

TEST_F(Readers, EnumerateByPosition) {
    Publish();
    EXPECT_EQ(oamShadowBoardEnum(kIgnored, -1, name, sizeof name), OAMERR_NOT_FOUND);
    EXPECT_EQ(oamShadowBoardEnum(kIgnored, 2, name, sizeof name), OAMERR_NOT_FOUND);
    EXPECT_EQ(oamShadowBoardEnum(kIgnored, 0, name, 5), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(name, "before");
    EXPECT_EQ(oamShadowBoardEnum(kIgnored, 0, name, 6), OAM_SUCCESS);
    EXPECT_STREQ(name, "Alpha");
    EXPECT_EQ(oamShadowBoardEnum(kIgnored, 1, name, sizeof name), OAM_SUCCESS);
    EXPECT_STREQ(name, "Bravo");
}

TEST_F(Readers, LookUpTheFirstOfANumber) {
    Publish();
    EXPECT_EQ(oamShadowBoardLookupByNumber(kIgnored, 5, name, sizeof name), OAM_SUCCESS);
    EXPECT_STREQ(name, "Alpha");
    EXPECT_EQ(oamShadowBoardLookupByNumber(kIgnored, 5, name, 5), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardLookupByNumber(kIgnored, 6, name, sizeof name), OAMERR_NOT_FOUND);
}

TEST_F(Readers, LookUpByBothDriverTexts) {
    Publish();
    EXPECT_EQ(oamShadowBoardLookupByDriverIDs(kIgnored, "DRIVER", "other", name, sizeof name),
              OAM_SUCCESS);
    EXPECT_STREQ(name, "Bravo");
    EXPECT_EQ(oamShadowBoardLookupByDriverIDs(kIgnored, "Driver", "None", name, sizeof name),
              OAMERR_NOT_FOUND);
}

TEST_F(Readers, AnswerANamedBoardsFields) {
    Publish();
    EXPECT_EQ(oamShadowBoardGetNumber(kIgnored, "ALPHA", &number), OAM_SUCCESS);
    EXPECT_EQ(number, 5u);
    EXPECT_EQ(oamShadowBoardGetNumber(kIgnored, "None", &number), OAMERR_NOT_FOUND);
    EXPECT_EQ(oamShadowBoardIsUsingALaw(kIgnored, "alpha", &flag), OAM_SUCCESS);
    EXPECT_TRUE(flag);
    EXPECT_EQ(oamShadowBoardIsUsingALaw(kIgnored, "bravo", &flag), OAM_SUCCESS);
    EXPECT_FALSE(flag);
    EXPECT_EQ(oamShadowBoardIsUsingALaw(kIgnored, "None", &flag), OAMERR_NOT_FOUND);
}

TEST_F(Readers, TellThatABoardIsThereToWhoWantsNoValue) {
    Publish();
    EXPECT_EQ(oamShadowBoardGetNumber(kIgnored, "Alpha", nullptr), OAM_SUCCESS);
    EXPECT_EQ(oamShadowBoardIsUsingALaw(kIgnored, "Alpha", nullptr), OAM_SUCCESS);
    EXPECT_EQ(oamShadowBoardGetNumber(kIgnored, "None", nullptr), OAMERR_NOT_FOUND);
    EXPECT_EQ(oamShadowBoardIsUsingALaw(kIgnored, "None", nullptr), OAMERR_NOT_FOUND);
}

TEST_F(Readers, SecondTextThatDoesNotFitComesAfterTheFirstIsCopied) {
    Publish();
    EXPECT_EQ(oamShadowBoardGetDriverIDs(kIgnored, "Alpha", name, 6, other, 16),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(name, "before");
    EXPECT_EQ(oamShadowBoardGetDriverIDs(kIgnored, "Alpha", name, 7, other, 5),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(name, "Driver");
    EXPECT_STREQ(other, "before");
    EXPECT_EQ(oamShadowBoardGetDriverIDs(kIgnored, "Alpha", name, 7, other, 6), OAM_SUCCESS);
    EXPECT_STREQ(other, "Ident");
    EXPECT_EQ(oamShadowBoardGetDriverIDs(kIgnored, "None", name, 16, other, 16), OAMERR_NOT_FOUND);
}

TEST_F(Readers, TellWhetherTheVxPluginIsLoaded) {
    Publish(true);
    EXPECT_EQ(oamShadowBoardGetIsUsingVxPlugin(kIgnored, &flag), OAM_SUCCESS);
    EXPECT_TRUE(flag);
    EXPECT_EQ(oamShadowBoardGetIsUsingVxPlugin(kIgnored, nullptr), OAM_SUCCESS);
}

TEST_F(Readers, SeeWhatAnotherViewPublishes) {
    Publish();
    CBoardIDsShadow server;
    ShadowImage image(false);
    image.Add(CBoardIDShadow("Later", 9, "", "", false));
    ASSERT_EQ(server.Publish(image), OAM_SUCCESS);
    EXPECT_EQ(oamShadowBoardEnum(kIgnored, 0, name, sizeof name), OAM_SUCCESS);
    EXPECT_STREQ(name, "Later");
}

TEST_F(Readers, PublicationNeedsAView) {
    ShadowImage image(true);
    EXPECT_EQ(PublishShadow(image), OAMERR_NOT_ENOUGH_MEMORY);
    Publish();
    EXPECT_EQ(PublishShadow(image), OAM_SUCCESS);
    EXPECT_EQ(oamShadowBoardEnum(kIgnored, 0, name, sizeof name), OAMERR_NOT_FOUND);
}

TEST_F(Readers, ViewIsNotGivenUpUnderAPublication) {
    std::atomic<bool> isEnding{false};
    std::thread reader([&] {
        while (!isEnding) {
            EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
            EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
        }
    });
    ShadowImage image(true);
    for (int published = 0; published < 50;) {
        if (PublishShadow(image) == OAM_SUCCESS) ++published;
    }
    isEnding = true;
    reader.join();
}

TEST_F(Readers, KeptSecondInitMakesANewViewAndKeepsTheFirst) {
    Publish();
    CBoardIDsShadow* first = oamShadowGetPtr();
    ASSERT_EQ(oamShadowInit(), OAM_SUCCESS);
    EXPECT_NE(oamShadowGetPtr(), first);
    EXPECT_EQ(first->GetSize(), 2) << "still good for whoever holds it";
    EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
    EXPECT_EQ(oamShadowGetPtr(), nullptr);
    EXPECT_EQ(first->GetSize(), 2);
}

TEST_F(Readers, ExitIsSafeWithoutAView) {
    EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
    EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
}

TEST_F(Readers, SegmentThatCannotBeHadIsNoView) {
    setenv("KOR_SHM_DIR", home.Path("nowhere").c_str(), 1);
    EXPECT_EQ(oamShadowInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowGetPtr(), nullptr);
}

TEST_F(Readers, InitWithoutMemoryKeepsTheViewThatThereWas) {
    Publish();
    CBoardIDsShadow* before = oamShadowGetPtr();
    const AllocationFuse fuse(1);
    EXPECT_EQ(oamShadowInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowGetPtr(), before);
}

TEST_F(Readers, ViewIsNotGivenUpWhileAReaderIsInside) {
    Publish();
    std::atomic<bool> stop{false};
    std::thread reader([&] {
        char found[16];
        while (!stop) {
            const oam_result result = oamShadowBoardEnum(kIgnored, 0, found, sizeof found);
            EXPECT_TRUE(result == OAM_SUCCESS || result == OAMERR_NOT_ENOUGH_MEMORY);
        }
    });
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
        EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    }
    stop = true;
    reader.join();
}

}  // namespace
}  // namespace oam::test
