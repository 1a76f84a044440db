// A process that dies during an import comes back with the old configuration.
#include <sys/wait.h>
#include <unistd.h>

#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;

// The service runs in a child that ends itself in a plug-in's entry, without any clean-up.
class CrashedImport : public ServiceTest {
  protected:
    void SetUp() override {
        home.WriteDataFile("Old.xmo", kOld);
        AddPluginFor("x.bpi", {"Prod"});
    }

    // Imports in a child process, which dies at the n-th call of the entry.
    void DieDuringImport(const std::string& bytes, int initCall, int exitCall) {
        home.Write("import", bytes);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            int inits = 0;
            int exits = 0;
            recorder.Script("x.bpi", [&](ModuleScript& script) {
                script.init = [&](const char*) {
                    if (++inits == initCall) _exit(42);
                    return 0u;
                };
                script.exit = [&] {
                    if (++exits == exitCall) _exit(42);
                    return 0u;
                };
            });
            if (_oamInit() != OAM_SUCCESS) _exit(1);
            (void)_oamConfigImport(home.Path("import").c_str());
            _exit(2);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status));
        ASSERT_EQ(WEXITSTATUS(status), 42) << "the child did not die where it should";
    }

    const std::string kOld = DataFile("Old", {{"Key", "old"}, {"Name", "Old"}});
};

TEST_F(CrashedImport, BeforeAnythingIsSetAside) {
    DieDuringImport(ExportFile({{"Thing", {{"Name", "Thing"}}}}), 0, 1);
    Start();
    EXPECT_THAT(Objects(), ElementsAre("Old", "Supervisor", "x.bpi"));
    EXPECT_EQ(home.ReadDataFile("Old.xmo"), kOld);
}

TEST_F(CrashedImport, AfterTheNewObjectsAreWritten) {
    DieDuringImport(ExportFile({{"Thing", {{"Name", "Thing"}}}}), 2, 0);
    Start();
    EXPECT_THAT(Objects(), ElementsAre("Old", "Supervisor", "x.bpi"));
    EXPECT_EQ(home.ReadDataFile("Old.xmo"), kOld);
    EXPECT_EQ(StoredKeywordOf("Old", "Key"), Is("old"));
}

}  // namespace
}  // namespace oam::test
