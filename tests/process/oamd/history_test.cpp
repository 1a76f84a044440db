// What was changed, by whom, and back again.
#include <unistd.h>

#include "daemon_test.h"

namespace oam::test {
namespace {

constexpr const char* kBoard = "Sim E1 left";

class DaemonHistory : public DaemonTest {
  protected:
    void SetUp() override { Start(); }

    static v1::ListHistoryResponse History(Client& client, const std::string& object) {
        v1::ListHistoryRequest request;
        request.set_object(object);
        v1::ListHistoryResponse response;
        const auto status =
            Call(*client.configuration, &v1::Configuration::Stub::ListHistory, request, &response);
        EXPECT_TRUE(status.ok()) << status.error_message();
        return response;
    }
};

TEST_F(DaemonHistory, TellsWhoChangedWhatFromWhichValueToWhich) {
    Tool({"set", kBoard, "Number=40", "Driver.BoardId=trunk"});
    Client client(home);
    const auto history = History(client, kBoard);
    ASSERT_GE(history.entries_size(), 2);
    const auto& newest = history.entries(0);
    EXPECT_EQ(newest.action(), "change");
    EXPECT_EQ(newest.object(), kBoard);
    EXPECT_NE(newest.user(), "");
    std::map<std::string, std::pair<std::string, std::string>> changes;
    for (const auto& change : newest.changes())
        changes[change.keyword()] = {change.old_value(), change.new_value()};
    EXPECT_EQ(changes["Number"], std::pair(std::string("0"), std::string("40")));
    EXPECT_EQ(changes["Driver.BoardId"].second, "trunk");
    EXPECT_EQ(history.entries(1).action(), "add");
}

TEST_F(DaemonHistory, BringsAnObjectsKeywordsBack) {
    Client client(home);
    const std::uint64_t before = History(client, kBoard).entries(0).generation();
    Tool({"set", kBoard, "Number=40"});
    v1::RollBackRequest request;
    request.set_generation(before);
    request.set_object(kBoard);
    v1::RollBackResponse response;
    const auto status =
        Call(*client.configuration, &v1::Configuration::Stub::RollBack, request, &response);
    ASSERT_TRUE(status.ok()) << status.error_message();
    EXPECT_GT(response.generation(), before);
    EXPECT_EQ(Tool({"get", kBoard, "Number"}), "0\n");
    EXPECT_EQ(History(client, kBoard).entries(0).action(), "rollback");
}

TEST_F(DaemonHistory, BringsTheWholeConfigurationBack) {
    Client client(home);
    const std::uint64_t before = History(client, "").entries(0).generation();
    const std::string boards = Tool({"board", "list"});
    Tool({"board", "delete", kBoard});
    Tool({"set", "Sim E1 right", "Number=41"});
    v1::RollBackRequest request;
    request.set_generation(before);
    v1::RollBackResponse response;
    const auto status =
        Call(*client.configuration, &v1::Configuration::Stub::RollBack, request, &response);
    ASSERT_TRUE(status.ok()) << status.error_message();
    EXPECT_EQ(Tool({"board", "list"}), boards);
}

v1::ImportResponse import(Client& client, const std::string& file, bool isPreview) {
    grpc::ClientContext context;
    v1::ImportResponse response;
    const auto stream = client.configuration->Import(&context, &response);
    v1::ImportRequest request;
    request.set_piece(file);
    request.set_preview(isPreview);
    EXPECT_TRUE(stream->Write(request));
    stream->WritesDone();
    const auto status = stream->Finish();
    EXPECT_TRUE(status.ok()) << status.error_message();
    return response;
}

TEST_F(DaemonHistory, OfAnImportIsToldBeforehandWithoutChangingAnything) {
    Tool({"export", home.Path("saved")});
    const std::string file = home.Read("saved");
    Tool({"set", kBoard, "Number=40"});
    Tool({"board", "delete", "Sim E1 right"});
    Client client(home);
    const std::uint64_t before = History(client, "").entries(0).generation();
    const auto preview = import(client, file, true);
    EXPECT_EQ(preview.generation(), 0u);
    EXPECT_EQ(preview.findings_size(), 0);
    ASSERT_EQ(preview.differences_size(), 2);
    EXPECT_EQ(preview.differences(0).object(), kBoard);
    ASSERT_EQ(preview.differences(0).changes_size(), 1);
    EXPECT_EQ(preview.differences(0).changes(0).old_value(), "40");
    EXPECT_EQ(preview.differences(0).changes(0).new_value(), "0");
    EXPECT_EQ(preview.differences(1).object(), "Sim E1 right");
    EXPECT_EQ(preview.differences(1).kind(), v1::ObjectDifference::KIND_CREATED);
    EXPECT_EQ(History(client, "").entries(0).generation(), before);
    EXPECT_GT(import(client, file, false).generation(), before);
    EXPECT_EQ(import(client, file, true).differences_size(), 0);
}

TEST_F(DaemonHistory, PutsASpoiledDataFileBackAndSaysSo) {
    Tool({"set", kBoard, "Number=40"});
    End();
    std::string spoiled;
    for (const std::string& name : home.List("oam/cfg"))
        if (name.ends_with(".xmo") &&
            home.ReadDataFile(name).find("Sim E1 left") != std::string::npos)
            spoiled = name;
    ASSERT_NE(spoiled, "");
    home.Write("oam/cfg/" + spoiled, "");
    StartAgain();
    EXPECT_EQ(Tool({"get", kBoard, "Number"}), "40\n");
    const auto files = home.List("oam/cfg");
    EXPECT_TRUE(std::any_of(files.begin(), files.end(), [&](const std::string& name) {
        return name.starts_with(spoiled + ".spoiled-");
    }));
}

TEST_F(DaemonHistory, LeavesNothingOfAKilledExportLyingAbout) {
    Kill();
    home.Write("oam/scratch-a1B2c3", "half an export");
    StartAgain();
    EXPECT_FALSE(home.Exists("oam/scratch-a1B2c3"));
}

}  // namespace
}  // namespace oam::test
