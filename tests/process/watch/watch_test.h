// The fixture: the service with watch.emc, and one board "Card 0" of a scripted plug-in.
#pragma once

#include <filesystem>
#include <string>

#include "support/service_test.h"

namespace oam::test {

constexpr const char* kWatch = "watch.emc";
constexpr const char* kPlugin = "rec.bpi";
constexpr const char* kBoard = "Card 0";
constexpr unsigned kTooManyFailures = 0x50010001;

class WatchTest : public ServiceTest {
  protected:
    void SetUp() override {
        AddWatch();
        AddPluginFor(kPlugin, {"Card"});
        Start();
        ASSERT_EQ(CreateBoard("Card"), kBoard);
        alerts.Clear();
    }

    void AddWatch() const {
        std::filesystem::copy_file(WATCH_COMPONENT_FILE, home.Path("lib/watch.emc"));
    }

    // The outcome of an operation, as the service tells it.
    static void Succeed(const std::string& board = kBoard, unsigned code = OAMEVN_STARTBOARD_DONE) {
        EXPECT_EQ(Raise(code, OAM_INFORMATION, board, "Board is started.\n"), OAM_SUCCESS);
    }
    static void Fail(const std::string& board = kBoard, unsigned code = OAMEVN_STARTBOARD_DONE) {
        EXPECT_EQ(Raise(code, OAM_ERROR, board, "Failed to start board.\n"), OAM_SUCCESS);
    }

    // The names of the boards that have counts, as a reader of the component sees them.
    static std::vector<std::string> Names() {
        std::vector<std::string> names;
        const unsigned long handle = Open(kWatch);
        const int count = std::stoi(GetKeyword(handle, "Boards.Count").text);
        for (int i = 0; i < count; ++i) names.push_back(Element(handle, i, "Name").text);
        EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
        return names;
    }

    static Answer Element(unsigned long handle, int index, const std::string& member) {
        return GetKeyword(handle, "Boards[" + std::to_string(index) + "]." + member);
    }

    // One member of a board's counts; not found when the board has none.
    static Answer Of(const std::string& board, const std::string& member) {
        const unsigned long handle = Open(kWatch);
        const int count = std::stoi(GetKeyword(handle, "Boards.Count").text);
        Answer answer = Fails(OAMERR_NOT_FOUND);
        for (int i = 0; i < count; ++i) {
            if (Element(handle, i, "Name").text == board) answer = Element(handle, i, member);
        }
        EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
        return answer;
    }

    std::vector<Said> Warnings() const { return alerts.Heard(kTooManyFailures); }
};

}  // namespace oam::test
