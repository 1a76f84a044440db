// Open modes: who shares an object, and what each mode may do.
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OpenModes : public ServiceTest {
  protected:
    void SetUp() override {
        home.WriteDataFile("Thing.xmo", DataFile("Thing", {{"Key", "old"}, {"Name", "Thing"}}));
        Start();
    }

    // Client calls, which are answered at once; the Supervisor needs no plug-in.
    oam_result TryOpen(unsigned mode, unsigned long* handle) {
        return _oamOpenObject(kClient, "Supervisor", handle, mode);
    }
};

TEST_F(OpenModes, ReadersShareAndAWriterIsAlone) {
    for (unsigned first : {kRead, kWrite, kProviderRead, kProvider}) {
        for (unsigned second : {kRead, kWrite, kProviderRead, kProvider}) {
            const unsigned long opened = Open("Supervisor", first);
            unsigned long other = 0;
            const bool shares = (first & kWrite) == 0 && (second & kWrite) == 0;
            EXPECT_EQ(TryOpen(second, &other), shares ? OAM_SUCCESS : OAMERR_ACCESS_DENIED)
                << first << " then " << second;
            if (shares) {
                EXPECT_NE(other, opened) << "every opening has its own handle";
                EXPECT_EQ(_oamCloseObject(other), OAM_SUCCESS);
            } else {
                EXPECT_EQ(other, 0u) << "the handle is not touched";
            }
            EXPECT_EQ(_oamCloseObject(opened), OAM_SUCCESS);
        }
    }
}

TEST_F(OpenModes, ObjectIsWritableWhenTheLastReaderHasGone) {
    const unsigned long first = Open("Supervisor");
    const unsigned long second = Open("supervisor");
    unsigned long writer = 0;
    EXPECT_EQ(_oamCloseObject(first), OAM_SUCCESS);
    EXPECT_EQ(TryOpen(kWrite, &writer), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(_oamCloseObject(second), OAM_SUCCESS);
    EXPECT_EQ(TryOpen(kWrite, &writer), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(writer), OAM_SUCCESS);
}

TEST_F(OpenModes, UnknownObjectIsNotFoundAndLeavesTheHandle) {
    unsigned long handle = 77;
    EXPECT_EQ(_oamOpenObject(kClient, "Nobody", &handle, kRead), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamDbOpenObject("Nobody", &handle, kRead), OAMERR_NOT_FOUND);
    EXPECT_EQ(handle, 77u);
}

TEST_F(OpenModes, LaterReaderDoesNotChangeTheMode) {
    bool provider = false;
    const unsigned long asProvider = DbOpen("Thing", kProviderRead);
    const unsigned long reader = DbOpen("Thing", kRead);
    EXPECT_EQ(_oamDbGetProviderMode(reader, &provider), OAM_SUCCESS);
    EXPECT_TRUE(provider) << "the mode belongs to the object";
    EXPECT_EQ(_oamDbCloseObject(asProvider), OAM_SUCCESS);
    EXPECT_EQ(_oamDbGetProviderMode(reader, &provider), OAM_SUCCESS);
    EXPECT_TRUE(provider);
    EXPECT_EQ(_oamDbCloseObject(reader), OAM_SUCCESS);

    const unsigned long plain = DbOpen("Thing", kRead);
    const unsigned long late = DbOpen("Thing", kProviderRead);
    EXPECT_EQ(_oamDbGetProviderMode(late, &provider), OAM_SUCCESS);
    EXPECT_FALSE(provider);
    EXPECT_EQ(_oamDbCloseObject(plain), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(late), OAM_SUCCESS);
}

TEST_F(OpenModes, ProviderModeIsWhatTheModeAndTheSwitchSay) {
    for (unsigned mode : {kRead, kWrite, kProviderRead, kProvider}) {
        const unsigned long handle = DbOpen("Thing", mode);
        bool provider = (mode & kProviderRead) == 0;
        EXPECT_EQ(_oamDbGetProviderMode(handle, &provider), OAM_SUCCESS);
        EXPECT_EQ(provider, (mode & kProviderRead) != 0) << mode;
        for (bool wanted : {true, true, false, false, true}) {
            EXPECT_EQ(_oamDbSetProviderMode(handle, wanted), OAM_SUCCESS);
            EXPECT_EQ(_oamDbGetProviderMode(handle, &provider), OAM_SUCCESS);
            EXPECT_EQ(provider, wanted);
        }
        EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    }
}

TEST_F(OpenModes, EachModeAllowsItsOperations) {
    for (unsigned mode : {kRead, kWrite, kProviderRead, kProvider}) {
        const bool writer = (mode & kWrite) != 0;
        const bool provider = mode == kProvider;
        auto allowed = [](bool yes) { return yes ? OAM_SUCCESS : OAMERR_ACCESS_DENIED; };
        const unsigned long handle = DbOpen("Thing", mode);
        SCOPED_TRACE(mode);
        EXPECT_EQ(DbGetKeyword(handle, "Key"), Is("old"));
        EXPECT_EQ(DbGetQualifier(handle, "Key", "Type"), Fails(OAMERR_NOT_FOUND));
        EXPECT_THAT(EntryNames(handle), ElementsAre("Key", "Name"));
        EXPECT_EQ(_oamDbSetKeyword(handle, "Key", "old"), allowed(writer));
        EXPECT_EQ(_oamDbSetKeyword(handle, "New", "1"), allowed(provider));
        EXPECT_EQ(_oamDbSetQualifier(handle, "Key", "Type", "String"), allowed(provider));
        EXPECT_EQ(_oamDbRemoveQualifier(handle, "Key", "Type"), allowed(provider));
        EXPECT_EQ(_oamDbRemoveKeyword(handle, "New"), allowed(provider));
        EXPECT_THAT(EntryNames(handle), ElementsAre("Key", "Name"));
        EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    }
}

TEST_F(OpenModes, RefusedRemovalComesBeforeTheSearch) {
    const unsigned long handle = DbOpen("Thing", kWrite);
    EXPECT_EQ(_oamDbRemoveKeyword(handle, "Missing"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(_oamDbRemoveQualifier(handle, "Missing", "Type"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
}

TEST_F(OpenModes, ProviderSwitchLetsAWriterCreate) {
    const unsigned long handle = DbOpen("Thing", kWrite);
    EXPECT_EQ(_oamDbSetProviderMode(handle, true), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "New", "1"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetProviderMode(handle, false), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Newer", "1"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(_oamDbSetKeyword(handle, "New", "2"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(StoredKeywordOf("Thing", "New"), Is("2"));
}

TEST_F(OpenModes, ProviderSwitchDoesNotMakeAReaderAWriter) {
    const unsigned long handle = DbOpen("Thing", kRead);
    EXPECT_EQ(_oamDbSetProviderMode(handle, true), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Key", "new"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(_oamDbSetQualifier(handle, "Key", "Type", "x"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
}

TEST_F(OpenModes, ClientNeedsAWriterToChangeAKeywordAndAProviderToAddOne) {
    const unsigned long reader = Open("Supervisor", kRead);
    EXPECT_EQ(_oamSetKeyword(reader, "AutoStartEnabled", "Yes"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(_oamCloseObject(reader), OAM_SUCCESS);
    const unsigned long writer = Open("Supervisor", kWrite);
    EXPECT_EQ(_oamSetKeyword(writer, "AutoStartEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(writer, "New", "1"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(_oamCloseObject(writer), OAM_SUCCESS);
    const unsigned long provider = Open("Supervisor", kProvider);
    EXPECT_EQ(_oamSetKeyword(provider, "New", "1"), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(provider), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "New"), Is("1"));
}

TEST_F(OpenModes, ObjectWithoutAFileOpensEmptyAndItsWriterMakesTheFile) {
    home.Remove("oam/cfg/Thing.xmo");
    const unsigned long reader = DbOpen("Thing", kProviderRead);
    EXPECT_THAT(EntryNames(reader), IsEmpty());
    EXPECT_EQ(_oamDbCloseObject(reader), OAM_SUCCESS);
    EXPECT_FALSE(home.Exists("oam/cfg/Thing.xmo")) << "a reader writes nothing";

    const unsigned long writer = DbOpen("Thing", kProvider);
    EXPECT_THAT(EntryNames(writer), IsEmpty());
    EXPECT_EQ(_oamDbSetKeyword(writer, "Name", "Thing"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(writer), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Thing.xmo"), DataFile("Thing", {{"Name", "Thing"}}));
}

TEST_F(OpenModes, KeywordsAreInMemoryOnlyWhileTheObjectIsOpen) {
    EXPECT_EQ(StoredKeywordOf("Thing", "Key"), Is("old"));
    home.WriteDataFile("Thing.xmo", DataFile("Thing", {{"Key", "by hand"}, {"Name", "Thing"}}));
    EXPECT_EQ(StoredKeywordOf("Thing", "Key"), Is("by hand"));
    const unsigned long first = DbOpen("Thing");
    home.WriteDataFile("Thing.xmo", DataFile("Thing", {{"Key", "again"}, {"Name", "Thing"}}));
    const unsigned long second = DbOpen("Thing");
    EXPECT_EQ(DbGetKeyword(second, "Key"), Is("by hand")) << "loaded by the first opening";
    EXPECT_EQ(_oamDbCloseObject(first), OAM_SUCCESS);
    EXPECT_EQ(DbGetKeyword(second, "Key"), Is("by hand"));
    EXPECT_EQ(_oamDbCloseObject(second), OAM_SUCCESS);
    EXPECT_EQ(StoredKeywordOf("Thing", "Key"), Is("again"));
}

TEST_F(OpenModes, SpoiledFileRefusesTheOpening) {
    home.WriteDataFile("Thing.xmo", DataFile("Other", {{"Name", "Thing"}}));
    unsigned long handle = 77;
    EXPECT_EQ(_oamDbOpenObject("Thing", &handle, kRead), OAMERR_FILE_READ_ERROR);
    EXPECT_EQ(_oamDbOpenObject("Thing", &handle, kProvider), OAMERR_FILE_READ_ERROR);
    EXPECT_EQ(handle, 77u);
    home.WriteDataFile("Thing.xmo", DataFile("Thing", {{"Key", "mended"}, {"Name", "Thing"}}));
    EXPECT_EQ(StoredKeywordOf("Thing", "Key"), Is("mended")) << "a failed opening leaves nothing";
}

TEST_F(OpenModes, EndOfTheServiceDropsOpenHandlesAndTheirChanges) {
    const std::string before = home.ReadDataFile("Thing.xmo");
    const unsigned long handle = DbOpen("Thing", kProvider);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Key", "new"), OAM_SUCCESS);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Thing.xmo"), before);
    EXPECT_EQ(DbChange("Thing", "Key", "later"), OAM_SUCCESS) << "the object is closed";
}

}  // namespace
}  // namespace oam::test
