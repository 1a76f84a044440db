// The templates, built from the installed package, in a running service.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "package.h"
#include "program.h"
#include "support/service_test.h"

namespace fs = std::filesystem;
using oam::test::KitFile;
using oam::test::PackagePrefix;
using oam::test::RunProgram;
using oam::test::ServiceTest;

namespace {

class TemplateInService : public ServiceTest {
  protected:
    // Copies a template, builds it and puts it into the installation.
    void Add(const char* kit, const char* built) {
        const fs::path place = home.Path(kit);
        fs::copy(KitFile(kit), place, fs::copy_options::recursive);
        const std::string build = place / "build";
        for (const auto& command : std::vector<std::vector<std::string>>{
                 {"cmake", "-S", place, "-B", build,
                  "-DCMAKE_PREFIX_PATH=" + PackagePrefix().string()},
                 {"cmake", "--build", build}}) {
            const auto outcome = RunProgram(command, home.Root());
            ASSERT_EQ(outcome.status, 0) << outcome.out << outcome.err;
        }
        fs::copy_file(fs::path(build) / built, fs::path(home.Path("lib")) / built);
    }

    static std::string Get(const std::string& object, const char* keyword) {
        unsigned long handle = 0;
        char text[128] = "";
        EXPECT_EQ(_oamOpenObject(1, object.c_str(), &handle, OAM_OPEN_READ), OAM_SUCCESS);
        EXPECT_EQ(_oamGetKeyword(handle, keyword, text, sizeof text), OAM_SUCCESS) << keyword;
        EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
        return text;
    }

    static unsigned int Set(const std::string& object, const char* keyword, const char* value) {
        unsigned long handle = 0;
        EXPECT_EQ(_oamOpenObject(1, object.c_str(), &handle, OAM_OPEN_WRITE), OAM_SUCCESS);
        const unsigned int result = _oamSetKeyword(handle, keyword, value);
        EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
        return result;
    }
};

TEST_F(TemplateInService, ServesItsDetectedBoard) {
    Add("template", "demo.bpi");
    Start();
    ASSERT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    ASSERT_EQ(_oamAddDetectedBoard("Demo board"), OAM_SUCCESS);
    EXPECT_EQ(Get("Demo board", "Product"), "DEMO-1");
    EXPECT_EQ(Get("Demo board", "Gain"), "0");
    EXPECT_EQ(Set("Demo board", "Gain", "12"), OAM_SUCCESS);
    EXPECT_EQ(Set("Demo board", "Gain", "13"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(Set("Demo board", "Gain", "loud"), OAMERR_SET_BOARD_KEYWORD_FAIL);
    EXPECT_EQ(Get("Demo board", "Gain"), "12");
    EXPECT_EQ(_oamStartBoard("Demo board", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(_oamStopBoard("Demo board", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_STREQ(_oamGetText(0x51000001), "DEMO_NO_SUCH_TEST");
}

TEST_F(TemplateInService, KeepsItsKeywordsOverARestart) {
    Add("template", "demo.bpi");
    Start();
    char board[64];
    ASSERT_EQ(_oamCreateBoard("DEMO-1", board, sizeof board), OAM_SUCCESS);
    EXPECT_EQ(Set(board, "Gain", "7"), OAM_SUCCESS);
    ASSERT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(Get(board, "Gain"), "7");
}

TEST_F(TemplateInService, ComponentCountsErrors) {
    Add("template-component", "errors.emc");
    Start();
    EXPECT_EQ(Get("errors.emc", "Errors.Seen"), "0");
    const struct {
        oam_msg_tag header;
        char texts[16];
    } record = {
        {sizeof record, OAMEVN_ALERT, OAM_ERROR, sizeof(oam_msg_tag), sizeof(oam_msg_tag) + 5, 0},
        "test\0went bad"};
    EXPECT_EQ(_oamAlertNotify(&record.header), OAM_SUCCESS);
    EXPECT_EQ(Get("errors.emc", "Errors.Seen"), "1");
}

}  // namespace
